// Tests that need something of the machine (a network namespace, a program)
// skip without it on a developer's machine, but fail in CI (CI=true), where
// everything they need is installed and the runner may make namespaces.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

inline bool RunningInCi()
{
    const char* ci = std::getenv("CI");
    return ci != nullptr && std::strcmp(ci, "true") == 0;
}

#define VB3_REQUIRE(condition, reason)                                                                                 \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            if (RunningInCi())                                                                                         \
                GTEST_FAIL() << "CI=true and this test cannot run: " << reason;                                        \
            else                                                                                                       \
                GTEST_SKIP() << reason;                                                                                \
        }                                                                                                              \
    } while (false)
