// Latencies collected on the frame path. Room for every sample is reserved up front so
// that recording one never allocates (the memory benchmarks count allocations).
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace Bench {

class LatencySamples {
public:
    explicit LatencySamples(std::size_t capacity = 1 << 20);

    void Add(int64_t nanoseconds); // dropped once the reserved room is full
    void Clear();
    std::size_t Count() const;
    // The p-quantile (0 <= p <= 1) in nanoseconds by nearest rank; 0 without samples.
    int64_t Quantile(double p) const;
    // Writes every sample, in nanoseconds, one a line; false when the file could not be written.
    bool WriteTo(const std::string& path) const;

private:
    mutable std::mutex m_mutex;
    std::vector<int64_t> m_samples;
};

} // namespace Bench
