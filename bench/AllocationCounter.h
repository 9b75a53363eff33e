// Counts every heap allocation of the process (malloc and everything built on it,
// operator new included) so a benchmark can tell how many a delivered frame costs.
#pragma once

#include <cstdint>

namespace Bench {

struct AllocationTotals {
    uint64_t calls = 0;
    uint64_t bytes = 0;

    AllocationTotals operator-(const AllocationTotals& earlier) const
    {
        return {calls - earlier.calls, bytes - earlier.bytes};
    }
};

class AllocationCounter {
public:
    // Allocations made by every thread since the program started.
    static AllocationTotals Totals();
    // Allocations of exactly `bytes` are also counted apart: a copy of a std::string of
    // n > 15 characters asks for n + 1 bytes, so watching that size counts the copies of a key.
    static void WatchSize(uint64_t bytes);
    static uint64_t WatchedCalls();
};

} // namespace Bench
