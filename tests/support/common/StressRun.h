// The frame of a randomized stress run through the exported functions: a
// seed and a duration taken from the environment, host threads that pick
// operations at random until time is up, and a watchdog that aborts the
// process with every thread's last operation when nothing progresses.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

// VB3_STRESS_SEED when set, else the fixed default; printed so a failure can be replayed.
std::uint32_t StressSeed(std::uint32_t defaultSeed);
// VB3_STRESS_SECONDS when set, else the default.
std::chrono::seconds StressDuration(std::chrono::seconds defaultDuration);

// Aborts the process (after printing what every stress thread was doing) when
// no progress was reported for the stall limit.
class StressWatchdog {
public:
    StressWatchdog(std::size_t workers, std::chrono::seconds stallLimit);
    ~StressWatchdog();
    StressWatchdog(const StressWatchdog&) = delete;
    StressWatchdog& operator=(const StressWatchdog&) = delete;

    // Worker `index` starts the named operation (a string literal).
    void Begin(std::size_t index, const char* operation);
    // Worker `index` finished its operation.
    void Done(std::size_t index);
    // A phase outside the workers (setup, shutdown) made progress.
    void Phase(const char* phase);

private:
    void Watch();
    void ReportStallAndAbort();

    std::chrono::seconds m_stallLimit;
    std::vector<std::atomic<const char*>> m_operations;
    std::vector<std::atomic<std::uint64_t>> m_completed;
    std::atomic<const char*> m_phase{"setup"};
    std::atomic<std::uint64_t> m_progress{0};
    std::atomic<bool> m_stop{false};
    std::thread m_thread; // last: started once every field above exists
};

struct StressOperation {
    const char* name;
    std::function<void(std::mt19937& random)> run;
    double weight = 1; // relative chance of being picked
};

struct StressTotals {
    std::uint64_t operations = 0;
    double seconds = 0;
};

// Runs `workers` threads, each with its own generator seeded from `seed`, calling
// operations picked by weight until `duration` has passed.
StressTotals RunStressWorkers(std::size_t workers, std::uint32_t seed, std::chrono::seconds duration,
                              const std::vector<StressOperation>& operations, StressWatchdog& watchdog);
