// What the whole process has used: CPU time over all threads, resident memory, open files.
// The library works on threads of its own, so a benchmark's per-thread timer misses it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Bench {

double ProcessCpuSeconds();
double WallSeconds();        // steady clock
int64_t RealTimeNs();        // wall-clock time, the clock Aravis stamps its buffers with
uint64_t ResidentBytes();    // current resident set size
std::size_t OpenFileCount(); // file descriptors open in the process

} // namespace Bench
