#include "BenchConfig.h"

#include <cstdlib>
#include <cstring>

namespace Bench {

bool SmokeRun()
{
    static const bool smoke = [] {
        const char* value = std::getenv("VB3_BENCH_SMOKE");
        return value != nullptr && std::strcmp(value, "0") != 0 && value[0] != '\0';
    }();
    return smoke;
}

double Seconds(double full, double smoke)
{
    return SmokeRun() ? smoke : full;
}

uint64_t Count(uint64_t full, uint64_t smoke)
{
    return SmokeRun() ? smoke : full;
}

double SoakSeconds()
{
    constexpr double kHalfAnHour = 1800;
    const char* value = std::getenv("VB3_BENCH_SOAK_SECONDS");
    double seconds = value != nullptr ? std::strtod(value, nullptr) : 0;
    return seconds > 0 ? seconds : Seconds(kHalfAnHour, 2);
}

std::string SamplesDirectory()
{
    const char* value = std::getenv("VB3_BENCH_SAMPLES_DIR");
    return value != nullptr ? value : "";
}

} // namespace Bench
