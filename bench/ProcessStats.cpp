#include "ProcessStats.h"

#include <cstdio>
#include <dirent.h>
#include <ctime>
#include <unistd.h>

namespace Bench {

namespace {

double ClockSeconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace

double ProcessCpuSeconds()
{
    return ClockSeconds(CLOCK_PROCESS_CPUTIME_ID);
}

double WallSeconds()
{
    return ClockSeconds(CLOCK_MONOTONIC);
}

int64_t RealTimeNs()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

uint64_t ResidentBytes()
{
    FILE* statm = std::fopen("/proc/self/statm", "r");
    if (statm == nullptr)
        return 0;
    unsigned long long sizePages = 0;
    unsigned long long residentPages = 0;
    int read = std::fscanf(statm, "%llu %llu", &sizePages, &residentPages);
    std::fclose(statm);
    if (read != 2)
        return 0;
    return residentPages * static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
}

std::size_t OpenFileCount()
{
    DIR* directory = opendir("/proc/self/fd");
    if (directory == nullptr)
        return 0;
    std::size_t count = 0;
    while (const dirent* entry = readdir(directory))
        count += entry->d_name[0] != '.' ? 1 : 0;
    closedir(directory);
    // The directory stream's own descriptor is not the process's.
    return count > 0 ? count - 1 : 0;
}

} // namespace Bench
