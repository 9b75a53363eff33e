#include "camera/RateRing.h"

#include <algorithm>

RateRing::RateRing(uint64_t startMs)
{
    m_entries.fill({startMs, 0});
}

void RateRing::CountNewest(uint64_t count)
{
    m_entries.front().second += count;
}

uint64_t RateRing::NewestTime() const
{
    return m_entries.front().first;
}

double RateRing::Rate(uint64_t nowMs) const
{
    const uint64_t oldest = m_entries.back().first;
    if (nowMs <= oldest)
        return 0.0;
    uint64_t sum = 0;
    for (const auto& entry : m_entries)
        sum += entry.second;
    return static_cast<double>(sum) * 1000.0 / static_cast<double>(nowMs - oldest);
}

void RateRing::Shift(uint64_t nowMs)
{
    std::rotate(m_entries.rbegin(), m_entries.rbegin() + 1, m_entries.rend());
    m_entries.front() = {nowMs, 0};
}
