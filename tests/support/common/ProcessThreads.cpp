#include "support/common/ProcessThreads.h"
#include "support/common/WaitUntil.h"

#include <filesystem>
#include <iterator>
#include <thread>

std::size_t ProcessThreadCount()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

bool WaitForProcessThreadCount(std::size_t expected, std::chrono::seconds timeout)
{
    return WaitUntil([&] { return ProcessThreadCount() <= expected; }, timeout);
}
