#include "support/common/StressRun.h"

#include <cstdio>
#include <cstdlib>

static long EnvironmentNumber(const char* name, long fallback)
{
    const char* text = std::getenv(name);
    char* end = nullptr;
    const long value = text != nullptr ? std::strtol(text, &end, 10) : -1;
    return (end != text && *end == '\0' && value >= 0) ? value : fallback;
}

std::uint32_t StressSeed(std::uint32_t defaultSeed)
{
    const auto seed = static_cast<std::uint32_t>(EnvironmentNumber("VB3_STRESS_SEED", defaultSeed));
    std::printf("stress seed %u (VB3_STRESS_SEED replays a run)\n", seed);
    std::fflush(stdout); // seen even when the run aborts
    return seed;
}

std::chrono::seconds StressDuration(std::chrono::seconds defaultDuration)
{
    return std::chrono::seconds(EnvironmentNumber("VB3_STRESS_SECONDS", defaultDuration.count()));
}
