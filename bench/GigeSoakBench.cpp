// The soak: two simulated GigE Vision cameras at the fake camera's highest rate for a long time
// (VB3_BENCH_SOAK_SECONDS, half an hour unless set), one streamed through the library and the
// other by a plain Aravis loop at the same time, so both see the same load. It watches the
// process for what a long run leaks: resident memory after the warm-up, threads and open files.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <thread>

#include "BenchConfig.h"
#include "BenchCounters.h"
#include "FakeGigeFleet.h"
#include "FleetStreams.h"
#include "LibrarySession.h"
#include "ProcessStats.h"
#include "support/common/ProcessThreads.h"

using Bench::SetCounter;

namespace {

const Bench::FrameSettings kHighestRate{64, 64, 1000};
constexpr double kLongestWarmUpSeconds = 60;
constexpr double kMiB = 1024.0 * 1024.0;
// The first cycle sets up what the process keeps for good (GLib's worker thread and its event
// descriptors), so that the counts before and after the measured cycle compare like with like.
constexpr double kPrimingSeconds = 1;
// A discovery pass holds a socket per loopback address for a moment; the counts are the
// lowest of a few readings, so that such a pass does not look like a leak.
constexpr int kReadings = 10;
constexpr double kReadingGapSeconds = 0.1;
// The raw side streams this much longer, so that it still streams when the library's window ends
// (opening a camera through the library takes a moment, longer on a busy machine).
const double kRawOverlapSeconds = Bench::Seconds(5, 1);

struct ProcessSnapshot {
    double threads = 0;
    double files = 0;
    double residentBytes = 0;

    static ProcessSnapshot Take()
    {
        ProcessSnapshot snapshot{1e9, 1e9, double(Bench::ResidentBytes())};
        for (int reading = 0; reading < kReadings; ++reading) {
            if (reading > 0)
                Bench::SleepSeconds(kReadingGapSeconds);
            snapshot.threads = std::min(snapshot.threads, double(ProcessThreadCount()));
            snapshot.files = std::min(snapshot.files, double(Bench::OpenFileCount()));
        }
        return snapshot;
    }
};

// What the process looked like while both sides streamed: once both had warmed up, and at the end.
struct SoakWatch {
    ProcessSnapshot afterWarmUp;
    ProcessSnapshot end;
    double peakResidentBytes = 0;

    // Waits out the window, looking at the process once a second.
    void Watch(double seconds, double warmUpSeconds)
    {
        const double begin = Bench::WallSeconds();
        Bench::SleepSeconds(warmUpSeconds);
        afterWarmUp = ProcessSnapshot::Take();
        peakResidentBytes = afterWarmUp.residentBytes;
        for (double left = seconds - warmUpSeconds; left > 0; left = begin + seconds - Bench::WallSeconds()) {
            Bench::SleepSeconds(std::min(1.0, left));
            peakResidentBytes = std::max(peakResidentBytes, double(Bench::ResidentBytes()));
        }
        end = ProcessSnapshot::Take();
    }
};

void BM_GigeSoak(benchmark::State& state)
{
    Bench::FakeGigeFleet fleet(2, "SOAK", 200);
    std::string why;
    if (!fleet.Start(why)) {
        state.SkipWithError(why.c_str());
        return;
    }
    auto ids = Bench::LibrarySession::Instance().DiscoverGigeBySerial({fleet.Serials().front()});
    if (ids.empty()) {
        state.SkipWithError("the library did not list the fake GigE camera");
        return;
    }
    const double seconds = Bench::SoakSeconds();
    const double warmUpSeconds = std::min(kLongestWarmUpSeconds, seconds / 10);
    // Room for every delivery (33 a second), touched before the window so that it does not count as growth.
    const auto deliveries = static_cast<std::size_t>(std::ceil(seconds * 40)) + 1000;
    // Both sides stream at once, from opening to closing; the library's window is watched.
    auto cycle = [&](double cycleSeconds, Bench::FleetWindow& raw, Bench::FleetWindow& library, SoakWatch& watch) {
        std::thread rawSide([&] {
            raw = Bench::StreamWithPlainAravis({fleet.Address(1)}, kHighestRate, cycleSeconds + kRawOverlapSeconds);
        });
        Bench::LibraryFleet libraryFleet(ids, deliveries);
        std::string failure;
        if (libraryFleet.Open(kHighestRate, failure))
            library = libraryFleet.Stream(
                cycleSeconds, [&](double window) { watch.Watch(window, std::min(warmUpSeconds, window / 2)); });
        rawSide.join();
    };
    for (auto _ : state) {
        Bench::FleetWindow raw;
        Bench::FleetWindow library;
        SoakWatch watch;
        cycle(kPrimingSeconds, raw, library, watch);
        const ProcessSnapshot before = ProcessSnapshot::Take();
        cycle(seconds, raw, library, watch);
        const ProcessSnapshot after = ProcessSnapshot::Take();
        if (library.cameras.empty() || library.cameras.front().wallSeconds <= 0) {
            state.SkipWithError("the library did not stream the fake GigE camera");
            return;
        }
        SetCounter(state, "seconds", seconds);
        SetCounter(state, "warm_up_s", warmUpSeconds);
        SetCounter(state, "lib_fps", library.FramesPerSecond());
        SetCounter(state, "raw_fps", raw.FramesPerSecond());
        SetCounter(state, "lib_camera_fps", library.CameraFramesPerSecond());
        SetCounter(state, "raw_camera_fps", raw.CameraFramesPerSecond());
        SetCounter(state, "lib_frames", double(library.cameras.front().framesReceived));
        SetCounter(state, "lib_lost", library.FramesLost());
        SetCounter(state, "raw_lost", raw.FramesLost());
        // The raw loop's window is a little longer: its losses are taken at its rate over the library's window.
        double rawLostMeanwhile = Bench::Ratio(raw.FramesLost(), raw.wallSeconds) * library.wallSeconds;
        SetCounter(state, "lost_beyond_raw", std::max(0.0, library.FramesLost() - rawLostMeanwhile));
        SetCounter(state, "rss_after_warm_up_mib", watch.afterWarmUp.residentBytes / kMiB);
        SetCounter(state, "rss_end_mib", watch.end.residentBytes / kMiB);
        SetCounter(state, "rss_peak_mib", watch.peakResidentBytes / kMiB);
        SetCounter(state, "rss_growth_kib", (watch.end.residentBytes - watch.afterWarmUp.residentBytes) / 1024);
        SetCounter(state, "threads_before", before.threads);
        SetCounter(state, "threads_start", watch.afterWarmUp.threads);
        SetCounter(state, "threads_end", watch.end.threads);
        SetCounter(state, "threads_after", after.threads);
        SetCounter(state, "files_before", before.files);
        SetCounter(state, "files_start", watch.afterWarmUp.files);
        SetCounter(state, "files_end", watch.end.files);
        SetCounter(state, "files_after", after.files);
    }
}
BENCHMARK(BM_GigeSoak)->Iterations(1)->Unit(benchmark::kSecond)->UseRealTime();

} // namespace
