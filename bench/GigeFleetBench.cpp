// Many GigE Vision cameras at once, and large frames, over loopback inside the program's own
// network namespace. Each camera is an arv-fake-gv-camera-0.8 process on an address of its own;
// all of them are streamed by plain Aravis loops and then through the library (a camera admits
// one controller at a time); repetitions alternate which side goes first, so a drift in the
// machine's load evens out.
#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

#include "AlternatingSides.h"
#include "BenchConfig.h"
#include "BenchCounters.h"
#include "FakeGigeFleet.h"
#include "FleetStreams.h"
#include "LibrarySession.h"
#include "SdkBufferWatch.h"

using Bench::Ratio;
using Bench::SetCounter;

namespace {

// The fake GigE camera's highest AcquisitionFrameRate, at small frames.
const Bench::FrameSettings kSmallFrames{64, 64, 1000};
// Its whole sensor, as fast as it sends it, in jumbo packets as large frames are sent.
const Bench::FrameSettings kLargeFrames{2048, 2048, 1000, 8000};

struct Sides {
    Bench::FleetWindow raw;
    Bench::FleetWindow library;
    double deliveredFrames = 0;
    double zeroCopyFrames = 0; // delivered frames whose pixels are an SDK buffer's own
};

class FleetRun {
public:
    FleetRun(int cameras, const std::string& serialPrefix, int firstHost) : m_fleet(cameras, serialPrefix, firstHost) {}

    // Starts the cameras and lets the library list them; false with the reason on failure.
    bool Prepare(std::string& why)
    {
        if (!m_fleet.Start(why))
            return false;
        m_ids = Bench::LibrarySession::Instance().DiscoverGigeBySerial(m_fleet.Serials());
        if (m_ids.empty())
            why = "the library did not list every fake GigE camera";
        return !m_ids.empty();
    }

    // Both sides, one after the other; false (with the reason) when the library side could not run.
    bool StreamBothWays(const Bench::FrameSettings& settings, double seconds, Sides& sides, std::string& why)
    {
        bool ok = true;
        auto streamRaw = [&] { sides.raw = Bench::StreamWithPlainAravis(m_fleet.Addresses(), settings, seconds); };
        auto streamLibrary = [&] {
            Bench::SdkBufferWatch::Clear();
            Bench::LibraryFleet library(m_ids);
            if (!library.Open(settings, why)) {
                ok = false;
                return;
            }
            sides.library = library.Stream(seconds);
            for (std::size_t i = 0; i < m_ids.size(); ++i)
                for (const auto& frame : library.Sink(i).Frames()) {
                    sides.deliveredFrames += 1;
                    sides.zeroCopyFrames += Bench::SdkBufferWatch::IsBufferData(frame.data) ? 1 : 0;
                }
        };
        static Bench::AlternatingSides order;
        order.Run(streamLibrary, streamRaw);
        return ok;
    }

private:
    Bench::FakeGigeFleet m_fleet;
    std::vector<std::string> m_ids;
};

void SetSideCounters(benchmark::State& state, const Sides& sides)
{
    const auto& raw = sides.raw;
    const auto& library = sides.library;
    SetCounter(state, "raw_fps", raw.FramesPerSecond());
    SetCounter(state, "lib_fps", library.FramesPerSecond());
    SetCounter(state, "fps_ratio", Ratio(library.FramesPerSecond(), raw.FramesPerSecond()));
    SetCounter(state, "raw_camera_fps", raw.CameraFramesPerSecond());
    SetCounter(state, "lib_camera_fps", library.CameraFramesPerSecond());
    SetCounter(state, "raw_received_share", raw.ReceivedShare());
    SetCounter(state, "lib_received_share", library.ReceivedShare());
    SetCounter(state, "received_share_ratio", Ratio(library.ReceivedShare(), raw.ReceivedShare()));
    SetCounter(state, "raw_lost_per_s", Ratio(raw.FramesLost(), raw.wallSeconds));
    SetCounter(state, "lib_lost_per_s", Ratio(library.FramesLost(), library.wallSeconds));
    SetCounter(state, "raw_cpu_us_per_frame", raw.CpuMicrosecondsPerFrame());
    SetCounter(state, "lib_cpu_us_per_frame", library.CpuMicrosecondsPerFrame());
    SetCounter(state, "cpu_ratio", Ratio(library.CpuMicrosecondsPerFrame(), raw.CpuMicrosecondsPerFrame()));
    SetCounter(state, "raw_cpu_share", Ratio(raw.cpuSeconds, raw.wallSeconds));
    SetCounter(state, "lib_cpu_share", Ratio(library.cpuSeconds, library.wallSeconds));
}

// Starts the fleet and streams it both ways, once per repetition; `extra` adds counters of its own.
void RunFleet(benchmark::State& state, FleetRun& run, const Bench::FrameSettings& settings,
              const std::function<void(const Sides&)>& extra)
{
    std::string why;
    if (!run.Prepare(why)) {
        state.SkipWithError(why.c_str());
        return;
    }
    const double seconds = Bench::Seconds(4.0, 0.5);
    for (auto _ : state) {
        Sides sides;
        if (!run.StreamBothWays(settings, seconds, sides, why)) {
            state.SkipWithError(why.c_str());
            return;
        }
        SetSideCounters(state, sides);
        extra(sides);
    }
}

// 1, 4 and 8 cameras at 64 × 64 and the fake camera's highest rate.
void BM_GigeCameraCount(benchmark::State& state)
{
    const int cameras = static_cast<int>(state.range(0));
    FleetRun run(cameras, "N" + std::to_string(cameras) + "C", 10 * cameras + 2);
    RunFleet(state, run, kSmallFrames, [&](const Sides&) { SetCounter(state, "cameras", cameras); });
}
BENCHMARK(BM_GigeCameraCount)
    ->Arg(1)
    ->Arg(4)
    ->Arg(8)
    ->ArgName("cameras")
    ->Iterations(1)
    ->Repetitions(static_cast<int>(Bench::Count(3, 1)))
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// One camera sending 2048 × 2048 Mono8 frames: bytes per second, and whether the host's image is
// the SDK's buffer itself.
void BM_GigeLargeFrames(benchmark::State& state)
{
    FleetRun run(1, "LF", 100);
    const double bytesPerFrame = double(kLargeFrames.width) * kLargeFrames.height;
    RunFleet(state, run, kLargeFrames, [&](const Sides& sides) {
        SetCounter(state, "raw_mb_per_s", sides.raw.FramesPerSecond() * bytesPerFrame / 1e6);
        SetCounter(state, "lib_mb_per_s", sides.library.FramesPerSecond() * bytesPerFrame / 1e6);
        SetCounter(state, "delivered", sides.deliveredFrames);
        SetCounter(state, "zero_copy_share", Ratio(sides.zeroCopyFrames, sides.deliveredFrames));
    });
}
BENCHMARK(BM_GigeLargeFrames)
    ->Iterations(1)
    ->Repetitions(static_cast<int>(Bench::Count(3, 1)))
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
