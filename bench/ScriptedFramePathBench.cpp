// The layer's own cost per frame, measured on the scripted SDK handing out small frames as
// fast as it can: the same device description drained by a bare SDK loop and streamed
// through OpenCamera/StartGrab, side by side in one run. Also heap allocations per frame
// and resident memory over a million frames.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>

#include "AllocationCounter.h"
#include "AlternatingSides.h"
#include "BenchConfig.h"
#include "BenchCounters.h"
#include "FrameSink.h"
#include "LibrarySession.h"
#include "ProcessStats.h"
#include "RawSdkStream.h"
#include "ScriptedFleet.h"
#include "ViewerBiz3.h"

namespace {

using Bench::AllocationCounter;
using Bench::AllocationTotals;
using Bench::SetCounter;

constexpr uint64_t kScriptedMask = ZYLGENICAM::TL_GIGE | ZYLGENICAM::TL_SIMULATED;
constexpr double kWarmUpSeconds = 0.3;
constexpr double kPollSeconds = 0.005;

// The library lists and opens a streaming camera; its identifier, or "" after marking the
// benchmark skipped when that failed.
std::string OpenThroughLibrary(benchmark::State& state, Scripted::ScriptedDevice& device)
{
    auto& fleet = Bench::ScriptedFleet::Instance();
    fleet.ShowFleet(0);
    fleet.ShowStreamingCameras(true);
    std::string id = Bench::ScriptedFleet::CameraId(device);
    auto listed = [&](const std::vector<std::string>& cameras) {
        return std::find(cameras.begin(), cameras.end(), id) != cameras.end();
    };
    if (Bench::LibrarySession::Instance().Discover(kScriptedMask, listed)) {
        auto opened = ViewerBiz3::GetOpenedCameraIds();
        if (std::find(opened.begin(), opened.end(), id) != opened.end() || ViewerBiz3::OpenCamera(id) == 0)
            return id;
    }
    state.SkipWithError("the library did not open the scripted camera");
    return "";
}

// Process-wide figures at one instant, with the frames the device has handed out so far.
struct Snapshot {
    uint64_t frames = 0;
    uint64_t delivered = 0;
    double wall = 0;
    double cpu = 0;
    AllocationTotals allocations;
    uint64_t keyCopies = 0; // allocations of the size of a copy of the camera key
};

Snapshot Take(const Scripted::ScriptedDevice& device, const Bench::FrameSink& sink)
{
    Snapshot snapshot;
    snapshot.allocations = AllocationCounter::Totals();
    snapshot.keyCopies = AllocationCounter::WatchedCalls();
    snapshot.frames = device.Counters().imagesHandedOut;
    snapshot.delivered = sink.Delivered();
    snapshot.wall = Bench::WallSeconds();
    snapshot.cpu = Bench::ProcessCpuSeconds();
    return snapshot;
}

struct Window {
    Snapshot from;
    Snapshot to;

    double Frames() const { return static_cast<double>(to.frames - from.frames); }
    double Delivered() const { return static_cast<double>(to.delivered - from.delivered); }
    double Seconds() const { return to.wall - from.wall; }
    double NsPerFrame() const { return Frames() > 0 ? Seconds() * 1e9 / Frames() : 0; }
    double CpuNsPerFrame() const { return Frames() > 0 ? (to.cpu - from.cpu) * 1e9 / Frames() : 0; }
    AllocationTotals Allocations() const { return to.allocations - from.allocations; }
    double KeyCopies() const { return static_cast<double>(to.keyCopies - from.keyCopies); }
};

// Streams the opened camera through the library; `during` runs between the two snapshots,
// the first taken `warmUpSeconds` after StartGrab.
template <typename During>
Window StreamThroughLibrary(const std::string& id, const Scripted::ScriptedDevice& device, Bench::FrameSink& sink,
                            double warmUpSeconds, During during)
{
    Window window;
    sink.Clear();
    ViewerBiz3::RegisterImageUpdateListener(id, &sink);
    ViewerBiz3::RegisterAcqStatisticUpdateListener(&sink);
    if (ViewerBiz3::StartGrab(id) == 0) {
        Bench::SleepSeconds(warmUpSeconds);
        window.from = Take(device, sink);
        during();
        window.to = Take(device, sink);
        ViewerBiz3::StopGrab(id);
    }
    ViewerBiz3::UnRegisterAcqStatisticUpdateListener(&sink);
    ViewerBiz3::UnRegisterImageUpdateListener(id, &sink);
    return window;
}

// The bare SDK loop over the same kind of device.
struct RawWindow {
    Bench::StreamWindow stream;

    double NsPerFrame() const { return stream.framesReceived ? stream.wallSeconds * 1e9 / stream.framesReceived : 0; }
    double CpuNsPerFrame() const { return stream.CpuMicrosecondsPerFrame() * 1e3; }
    double AllocationsPerFrame() const
    {
        return stream.framesReceived ? static_cast<double>(stream.allocations.calls) / stream.framesReceived : 0;
    }
    double BytesPerFrame() const
    {
        return stream.framesReceived ? static_cast<double>(stream.allocations.bytes) / stream.framesReceived : 0;
    }
};

RawWindow DrainWithSdk(const std::string& serial, double seconds)
{
    RawWindow window;
    Bench::ScriptedFleet::Instance().StreamingCamera(serial);
    Bench::RawSdkStream raw(serial, kScriptedMask);
    window.stream = raw.RunSeconds(seconds);
    return window;
}

// Flat out: the bare SDK loop and the library on twin devices, each for the same time.
void BM_ScriptedFramePath(benchmark::State& state)
{
    const double seconds = Bench::Seconds(2.0, 0.05);
    auto& libraryDevice = Bench::ScriptedFleet::Instance().StreamingCamera("LIB-FAST");
    Bench::ScriptedFleet::Instance().StreamingCamera("RAW-FAST");
    std::string id = OpenThroughLibrary(state, libraryDevice);
    if (id.empty())
        return;
    Bench::FrameSink sink(id);
    static Bench::AlternatingSides order;
    for (auto _ : state) {
        RawWindow raw;
        Window library;
        auto drainRaw = [&] { raw = DrainWithSdk("RAW-FAST", seconds); };
        auto streamLibrary = [&] {
            library =
                StreamThroughLibrary(id, libraryDevice, sink, kWarmUpSeconds, [&] { Bench::SleepSeconds(seconds); });
        };
        order.Run(streamLibrary, drainRaw);
        double libraryAllocations = library.Frames() > 0 ? library.Allocations().calls / library.Frames() : 0;
        double libraryBytes = library.Frames() > 0 ? library.Allocations().bytes / library.Frames() : 0;
        SetCounter(state, "raw_fps", raw.stream.FramesPerSecond());
        SetCounter(state, "raw_ns_per_frame", raw.NsPerFrame());
        SetCounter(state, "raw_cpu_ns_per_frame", raw.CpuNsPerFrame());
        SetCounter(state, "lib_fps", library.Seconds() > 0 ? library.Frames() / library.Seconds() : 0);
        SetCounter(state, "lib_ns_per_frame", library.NsPerFrame());
        SetCounter(state, "lib_cpu_ns_per_frame", library.CpuNsPerFrame());
        SetCounter(state, "layer_cpu_ns_per_frame", library.CpuNsPerFrame() - raw.CpuNsPerFrame());
        SetCounter(state, "layer_ns_per_frame", library.NsPerFrame() - raw.NsPerFrame());
        SetCounter(state, "throughput_ratio",
                   raw.NsPerFrame() > 0 && library.NsPerFrame() > 0 ? raw.NsPerFrame() / library.NsPerFrame() : 0);
        SetCounter(state, "raw_allocs_per_frame", raw.AllocationsPerFrame());
        SetCounter(state, "raw_bytes_per_frame", raw.BytesPerFrame());
        SetCounter(state, "lib_allocs_per_frame", libraryAllocations);
        SetCounter(state, "lib_bytes_per_frame", libraryBytes);
        SetCounter(state, "layer_allocs_per_frame", libraryAllocations - raw.AllocationsPerFrame());
        SetCounter(state, "layer_bytes_per_frame", libraryBytes - raw.BytesPerFrame());
        SetCounter(state, "lib_frames", library.Frames());
        SetCounter(state, "lib_delivered", library.Delivered());
    }
}
BENCHMARK(BM_ScriptedFramePath)
    ->Iterations(1)
    ->Repetitions(static_cast<int>(Bench::Count(5, 1)))
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Paced below the 30 ms display cap so that every frame reaches the host: allocations per
// delivered frame, after taking off what the SDK allocates per frame and what the library's
// background threads allocate anyway (measured first, camera open but idle).
void BM_ScriptedDeliveryAllocations(benchmark::State& state)
{
    const double seconds = Bench::Seconds(3.0, 0.1);
    const auto period = std::chrono::milliseconds(50);
    auto& device = Bench::ScriptedFleet::Instance().StreamingCamera("LIB-PACED");
    device.SetFrameScript(Bench::SmallFrames(0, false, period));
    std::string id = OpenThroughLibrary(state, device);
    if (id.empty())
        return;
    Bench::FrameSink sink(id);
    sink.SetReadPixelAddress(false);
    // Keys longer than the short-string buffer are copied to the heap: those copies are the
    // listener's string copies the target allows.
    AllocationCounter::WatchSize(id.size() > 15 ? id.size() + 1 : 0);
    for (auto _ : state) {
        RawWindow raw = DrainWithSdk("RAW-FAST", Bench::Seconds(0.3, 0.02));
        Window idle;
        idle.from = Take(device, sink);
        Bench::SleepSeconds(seconds);
        idle.to = Take(device, sink);
        Window paced = StreamThroughLibrary(id, device, sink, kWarmUpSeconds, [&] { Bench::SleepSeconds(seconds); });
        double idleSeconds = idle.Seconds() > 0 ? idle.Seconds() : 1;
        double background = idle.Allocations().calls / idleSeconds;
        double backgroundBytes = idle.Allocations().bytes / idleSeconds;
        double backgroundKeyCopies = idle.KeyCopies() / idleSeconds;
        double frames = paced.Frames();
        double delivered = paced.Delivered();
        double net = paced.Allocations().calls - background * paced.Seconds() - raw.AllocationsPerFrame() * frames;
        double netBytes = paced.Allocations().bytes - backgroundBytes * paced.Seconds() - raw.BytesPerFrame() * frames;
        double keyCopies = paced.KeyCopies() - backgroundKeyCopies * paced.Seconds();
        auto perDelivered = [&](double value) { return delivered > 0 ? value / delivered : 0; };
        SetCounter(state, "frames", frames);
        SetCounter(state, "delivered", delivered);
        SetCounter(state, "key_length", static_cast<double>(id.size()));
        SetCounter(state, "background_allocs_per_s", background);
        SetCounter(state, "sdk_allocs_per_frame", raw.AllocationsPerFrame());
        SetCounter(state, "layer_allocs_per_delivered_frame", perDelivered(net));
        SetCounter(state, "layer_bytes_per_delivered_frame", perDelivered(netBytes));
        SetCounter(state, "key_copies_per_delivered_frame", perDelivered(keyCopies));
        SetCounter(state, "other_allocs_per_delivered_frame", perDelivered(net - keyCopies));
    }
    AllocationCounter::WatchSize(0);
}
BENCHMARK(BM_ScriptedDeliveryAllocations)
    ->Iterations(1)
    ->Repetitions(static_cast<int>(Bench::Count(3, 1)))
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Polled rather than waited on: a waiter on the device would be woken by every frame. Returns
// the count seen.
uint64_t WaitForFrames(const Scripted::ScriptedDevice& device, uint64_t frames, double pollSeconds = kPollSeconds)
{
    uint64_t seen = 0;
    while ((seen = device.Counters().imagesHandedOut) < frames) {
        if (pollSeconds > 0)
            Bench::SleepSeconds(pollSeconds);
        else
            std::this_thread::yield();
    }
    return seen;
}

// Resident memory after the first thousand frames and after a million, for the bare SDK
// loop and for the library, each on a device of its own.
void BM_ResidentMemory(benchmark::State& state)
{
    const uint64_t early = 1000;
    const uint64_t late = Bench::Count(1000000, 20000);
    auto& fleet = Bench::ScriptedFleet::Instance();
    fleet.StreamingCamera("RAW-RSS");
    auto& device = fleet.StreamingCamera("LIB-RSS");
    std::string id = OpenThroughLibrary(state, device);
    if (id.empty())
        return;
    Bench::FrameSink sink(id);
    for (auto _ : state) {
        uint64_t rawEarly = 0;
        uint64_t rawLate = 0;
        {
            Bench::RawSdkStream raw("RAW-RSS", kScriptedMask);
            raw.DrainFrames(early);
            rawEarly = Bench::ResidentBytes();
            raw.DrainFrames(late - early);
            rawLate = Bench::ResidentBytes();
        }
        uint64_t libraryEarly = 0;
        uint64_t libraryLate = 0;
        uint64_t earlyFrames = 0;
        uint64_t start = device.Counters().imagesHandedOut;
        StreamThroughLibrary(id, device, sink, 0, [&] {
            earlyFrames = WaitForFrames(device, start + early, 0) - start;
            libraryEarly = Bench::ResidentBytes();
            WaitForFrames(device, start + late);
            libraryLate = Bench::ResidentBytes();
        });
        auto kib = [](uint64_t later, uint64_t earlier) {
            return (static_cast<double>(later) - static_cast<double>(earlier)) / 1024.0;
        };
        SetCounter(state, "frames", static_cast<double>(late));
        SetCounter(state, "lib_early_frames", static_cast<double>(earlyFrames));
        SetCounter(state, "raw_rss_growth_kib", kib(rawLate, rawEarly));
        SetCounter(state, "lib_rss_after_early_mib", libraryEarly / 1048576.0);
        SetCounter(state, "lib_rss_after_late_mib", libraryLate / 1048576.0);
        SetCounter(state, "lib_rss_growth_kib", kib(libraryLate, libraryEarly));
        SetCounter(state, "layer_rss_growth_kib", kib(libraryLate, libraryEarly) - kib(rawLate, rawEarly));
    }
}
BENCHMARK(BM_ResidentMemory)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// Fixed frame counts for callgrind (run by bench/run-benchmarks with --toggle-collect): the
// difference between two counts gives instructions per frame, free of start-up work.
void BM_CallgrindSdk(benchmark::State& state)
{
    const auto frames = static_cast<uint64_t>(state.range(0));
    Bench::ScriptedFleet::Instance().StreamingCamera("RAW-CG");
    Bench::RawSdkStream raw("RAW-CG", kScriptedMask);
    for (auto _ : state)
        SetCounter(state, "frames", static_cast<double>(raw.DrainFrames(frames)));
}
BENCHMARK(BM_CallgrindSdk)->Arg(2000)->Arg(12000)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_CallgrindLibrary(benchmark::State& state)
{
    const auto frames = static_cast<uint64_t>(state.range(0));
    auto& device = Bench::ScriptedFleet::Instance().StreamingCamera("LIB-CG");
    std::string id = OpenThroughLibrary(state, device);
    if (id.empty())
        return;
    Bench::FrameSink sink(id);
    for (auto _ : state) {
        device.SetFrameScript(Bench::SmallFrames(frames, true));
        uint64_t start = device.Counters().imagesHandedOut;
        StreamThroughLibrary(id, device, sink, 0, [&] { WaitForFrames(device, start + frames); });
        SetCounter(state, "frames", static_cast<double>(device.Counters().imagesHandedOut - start));
        SetCounter(state, "delivered", static_cast<double>(sink.Delivered()));
    }
}
BENCHMARK(BM_CallgrindLibrary)->Arg(2000)->Arg(12000)->Iterations(1)->Unit(benchmark::kMillisecond);

// Frames paced below the 30 ms display cap, so that callgrind sees enough deliveries to the host.
void BM_CallgrindDelivery(benchmark::State& state)
{
    const uint64_t frames = 20;
    auto& device = Bench::ScriptedFleet::Instance().StreamingCamera("LIB-CG-PACED");
    std::string id = OpenThroughLibrary(state, device);
    if (id.empty())
        return;
    Bench::FrameSink sink(id);
    for (auto _ : state) {
        device.SetFrameScript(Bench::SmallFrames(frames, true, std::chrono::milliseconds(50)));
        uint64_t start = device.Counters().imagesHandedOut;
        StreamThroughLibrary(id, device, sink, 0, [&] {
            WaitForFrames(device, start + frames);
            Bench::SleepSeconds(0.1);
        });
        SetCounter(state, "delivered", static_cast<double>(sink.Delivered()));
    }
}
BENCHMARK(BM_CallgrindDelivery)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
