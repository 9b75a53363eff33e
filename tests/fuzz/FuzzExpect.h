// A broken property aborts the run like a crash, so libFuzzer keeps the input that caused it.
#pragma once

#include <cstdio>
#include <cstdlib>

inline void FuzzExpect(bool holds, const char* property)
{
    if (!holds) {
        std::fprintf(stderr, "fuzz property violated: %s\n", property);
        std::abort();
    }
}
