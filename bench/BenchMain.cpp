// Entry of every benchmark program: first a network namespace of our own, then Google Benchmark.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "support/common/PrivateNetworkNamespace.h"

int main(int argc, char** argv)
{
    std::string why;
    if (!EnterPrivateNetworkNamespace(why))
        std::fprintf(stderr, "No private network namespace (%s): GigE Vision benchmarks are skipped.\n", why.c_str());
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
