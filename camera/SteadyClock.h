// Milliseconds of the steady clock: what the acquisition loops and the open-time log measure with.
#pragma once

#include <chrono>
#include <cstdint>

inline uint64_t SteadyMilliseconds()
{
    return static_cast<uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
            .count());
}
