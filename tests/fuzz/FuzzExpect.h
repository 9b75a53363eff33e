// A property every input must keep: a violation stops the run the way a crash
// does, so libFuzzer saves the input that caused it.
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
