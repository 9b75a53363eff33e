// Tests that need something of the machine (a network namespace, a program) skip without it on a
// developer's machine, but fail in CI (CI=true), where the runner has all they need.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#define VB3_REQUIRE(condition, reason)                                                                                 \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            if (std::getenv("CI") != nullptr && std::strcmp(std::getenv("CI"), "true") == 0)                           \
                GTEST_FAIL() << "CI=true and this test cannot run: " << reason;                                        \
            else                                                                                                       \
                GTEST_SKIP() << reason;                                                                                \
        }                                                                                                              \
    } while (false)
