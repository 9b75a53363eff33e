// The threads of this test process, to check that the library leaves none behind.
#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

#include "support/common/WaitUntil.h"

inline std::size_t ProcessThreadCount()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

// Waits until at most `expected` threads remain; a finished thread may take a moment to vanish.
inline bool WaitForProcessThreadCount(std::size_t expected, std::chrono::seconds timeout)
{
    return WaitUntil([&] { return ProcessThreadCount() <= expected; }, timeout);
}
