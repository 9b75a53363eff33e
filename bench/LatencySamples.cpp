#include "LatencySamples.h"

#include <algorithm>
#include <cmath>
#include <fstream>

namespace Bench {

LatencySamples::LatencySamples(std::size_t capacity)
{
    m_samples.reserve(capacity);
}

void LatencySamples::Add(int64_t nanoseconds)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_samples.size() < m_samples.capacity())
        m_samples.push_back(nanoseconds);
}

void LatencySamples::Clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_samples.clear();
}

std::size_t LatencySamples::Count() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_samples.size();
}

int64_t LatencySamples::Quantile(double p) const
{
    std::vector<int64_t> sorted;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        sorted = m_samples;
    }
    if (sorted.empty())
        return 0;
    std::sort(sorted.begin(), sorted.end());
    auto rank = static_cast<std::size_t>(std::ceil(std::clamp(p, 0.0, 1.0) * static_cast<double>(sorted.size())));
    return sorted[rank == 0 ? 0 : rank - 1];
}

bool LatencySamples::WriteTo(const std::string& path) const
{
    std::ofstream out(path);
    std::lock_guard<std::mutex> lock(m_mutex);
    for (int64_t sample : m_samples)
        out << sample << '\n';
    return static_cast<bool>(out);
}

} // namespace Bench
