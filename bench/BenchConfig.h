// How long the benchmarks run. The smoke test (ctest label "bench-smoke") sets
// VB3_BENCH_SMOKE=1 so that every program finishes in a few seconds: the figures are
// then meaningless, the point is that every path still runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Bench {

bool SmokeRun();
// `full` in a real run, `smoke` in the smoke test.
double Seconds(double full, double smoke);
uint64_t Count(uint64_t full, uint64_t smoke);
// How long the soak streams: VB3_BENCH_SOAK_SECONDS, else 30 minutes (2 seconds in the smoke test).
double SoakSeconds();
// Where benchmarks leave their raw samples for the report's pictures (VB3_BENCH_SAMPLES_DIR);
// empty when not asked for.
std::string SamplesDirectory();

} // namespace Bench
