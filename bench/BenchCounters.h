// The figures a benchmark reports beside its timings.
#pragma once

#include <benchmark/benchmark.h>

namespace Bench {

void SetCounter(benchmark::State& state, const char* name, double value);
// numerator / denominator, or 0 when there is nothing to divide by.
double Ratio(double numerator, double denominator);

} // namespace Bench
