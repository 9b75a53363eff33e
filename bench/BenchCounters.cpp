#include "BenchCounters.h"

namespace Bench {

void SetCounter(benchmark::State& state, const char* name, double value)
{
    state.counters[name] = benchmark::Counter(value);
}

double Ratio(double numerator, double denominator)
{
    return denominator > 0 ? numerator / denominator : 0;
}

} // namespace Bench
