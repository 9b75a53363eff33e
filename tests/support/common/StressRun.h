// The seed and the duration of a randomized stress run, taken from the environment.
#pragma once

#include <chrono>
#include <cstdint>

// VB3_STRESS_SEED when set, else the fixed default; printed so a failure can be replayed.
std::uint32_t StressSeed(std::uint32_t defaultSeed);
// VB3_STRESS_SECONDS when set, else the default.
std::chrono::seconds StressDuration(std::chrono::seconds defaultDuration);
