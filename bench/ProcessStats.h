// What the whole process has used: CPU time over all threads and resident memory.
// The library works on threads of its own, so a benchmark's per-thread timer misses it.
#pragma once

#include <cstdint>

namespace Bench {

double ProcessCpuSeconds();
double WallSeconds();        // steady clock
int64_t RealTimeNs();        // wall-clock time, the clock Aravis stamps its buffers with
uint64_t ResidentBytes();    // current resident set size

} // namespace Bench
