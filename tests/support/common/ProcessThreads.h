// The threads of this test process, to check that the library leaves none behind.
#pragma once

#include <chrono>
#include <cstddef>

// Threads of this process (/proc/self/task).
std::size_t ProcessThreadCount();
// Waits until at most `expected` threads remain; a finished thread may take a moment to vanish.
bool WaitForProcessThreadCount(std::size_t expected, std::chrono::seconds timeout);
