#include "support/common/StressRun.h"

#include <cstdio>
#include <cstdlib>

namespace {

long EnvironmentNumber(const char* name, long fallback)
{
    const char* text = std::getenv(name);
    if (text == nullptr || *text == '\0') {
        return fallback;
    }
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    return (end != nullptr && *end == '\0' && value >= 0) ? value : fallback;
}

} // namespace

std::uint32_t StressSeed(std::uint32_t defaultSeed)
{
    const auto seed = static_cast<std::uint32_t>(EnvironmentNumber("VB3_STRESS_SEED", defaultSeed));
    std::printf("stress seed %u (VB3_STRESS_SEED replays a run)\n", seed);
    std::fflush(stdout);
    return seed;
}

std::chrono::seconds StressDuration(std::chrono::seconds defaultDuration)
{
    return std::chrono::seconds(EnvironmentNumber("VB3_STRESS_SECONDS", defaultDuration.count()));
}

StressWatchdog::StressWatchdog(std::size_t workers, std::chrono::seconds stallLimit)
    : m_stallLimit(stallLimit), m_operations(workers), m_completed(workers)
{
    for (std::size_t index = 0; index < workers; ++index) {
        m_operations[index].store("idle");
        m_completed[index].store(0);
    }
    m_thread = std::thread([this] { Watch(); });
}

StressWatchdog::~StressWatchdog()
{
    m_stop.store(true);
    m_thread.join();
}

void StressWatchdog::Begin(std::size_t index, const char* operation)
{
    m_operations[index].store(operation);
}

void StressWatchdog::Done(std::size_t index)
{
    m_completed[index].fetch_add(1);
    m_progress.fetch_add(1);
}

void StressWatchdog::Phase(const char* phase)
{
    m_phase.store(phase);
    m_progress.fetch_add(1);
}

void StressWatchdog::Watch()
{
    std::uint64_t lastProgress = m_progress.load();
    auto lastChange = std::chrono::steady_clock::now();
    while (!m_stop.load()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const std::uint64_t progress = m_progress.load();
        const auto now = std::chrono::steady_clock::now();
        if (progress != lastProgress) {
            lastProgress = progress;
            lastChange = now;
        } else if (now - lastChange > m_stallLimit) {
            ReportStallAndAbort();
        }
    }
}

// A deadlock cannot be failed gracefully: the stuck threads hold the library's locks.
void StressWatchdog::ReportStallAndAbort()
{
    std::fprintf(stderr, "stress watchdog: no progress for %lld s (phase \"%s\"); probable deadlock\n",
                 static_cast<long long>(m_stallLimit.count()), m_phase.load());
    for (std::size_t index = 0; index < m_operations.size(); ++index) {
        std::fprintf(stderr, "  worker %zu: in \"%s\" after %llu operations\n", index, m_operations[index].load(),
                     static_cast<unsigned long long>(m_completed[index].load()));
    }
    std::fflush(stderr);
    std::abort();
}

StressTotals RunStressWorkers(std::size_t workers, std::uint32_t seed, std::chrono::seconds duration,
                              const std::vector<StressOperation>& operations, StressWatchdog& watchdog)
{
    watchdog.Phase("workers");
    std::atomic<std::uint64_t> total{0};
    const auto start = std::chrono::steady_clock::now();
    const auto deadline = start + duration;
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < workers; ++index) {
        threads.emplace_back([&, index] {
            std::mt19937 random(seed + static_cast<std::uint32_t>(index) * 7919u);
            std::vector<double> weights;
            for (const StressOperation& operation : operations) {
                weights.push_back(operation.weight);
            }
            std::discrete_distribution<std::size_t> pick(weights.begin(), weights.end());
            while (std::chrono::steady_clock::now() < deadline) {
                const StressOperation& operation = operations[pick(random)];
                watchdog.Begin(index, operation.name);
                operation.run(random);
                watchdog.Done(index);
                total.fetch_add(1);
            }
            watchdog.Begin(index, "finished");
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    StressTotals totals;
    totals.operations = total.load();
    totals.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("stress: %llu operations by %zu threads in %.1f s: %.0f operations/s\n",
                static_cast<unsigned long long>(totals.operations), workers, totals.seconds,
                totals.operations / totals.seconds);
    std::fflush(stdout);
    return totals;
}
