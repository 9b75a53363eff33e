// The six most recent (time, count) samples from which the grab and delivery loops derive a rate.
#pragma once

#include <array>
#include <cstdint>
#include <utility>

class RateRing {
public:
    // Every entry starts at (startMs, 0).
    explicit RateRing(uint64_t startMs);

    void CountNewest(uint64_t count);
    uint64_t NewestTime() const;
    // Sum of the counts per second since the oldest entry; 0 while no time has passed.
    double Rate(uint64_t nowMs) const;
    // Drops the oldest entry and puts (nowMs, 0) in front.
    void Shift(uint64_t nowMs);

private:
    std::array<std::pair<uint64_t, uint64_t>, 6> m_entries;
};
