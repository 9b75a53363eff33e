// The frame path on Aravis's in-process simulated area camera (small frames): a plain Aravis
// pop/push loop and the library (OpenCamera/StartGrab, an image listener that releases each
// frame) on the very same device, one after the other in the same run. Also how late frames
// reach the host's image and statistics callbacks.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include "AlternatingSides.h"
#include "BenchConfig.h"
#include "BenchCounters.h"
#include "FrameSink.h"
#include "LatencySamples.h"
#include "LibrarySession.h"
#include "ProcessStats.h"
#include "RawAravisStream.h"
#include "ViewerBiz3.h"
#include "sdk/aravis/AravisCamera.h"
#include "sdk/aravis/SimulatedCameraRegistry.h"

using Bench::Ratio;
using Bench::SetCounter;

namespace {

constexpr unsigned long long kSimulatedMask = ZYLGENICAM::TL_SIMULATED;
constexpr const char* kCameraId = "SimArea(SIM-AREA-01)";
constexpr const char* kSmallSide = "64";
// The simulated camera's highest AcquisitionFrameRate.
constexpr const char* kHighestFrameRate = "10000";
constexpr double kStatisticsFrameRate = 2.5; // well slower than the 300 ms publication period
constexpr int64_t kLateStatisticsNs = 100000000;

// The library with the simulated area camera open and set to small frames, and a plain
// Aravis camera object on the same simulated device.
class SimulatedAreaCamera {
public:
    static SimulatedAreaCamera& Instance()
    {
        static SimulatedAreaCamera camera;
        return camera;
    }

    bool IsReady() const { return m_raw != nullptr; }
    ArvCamera* Raw() const { return m_raw; }

    // Through the host interface, so both sides see the same setting.
    bool SetFrameRate(const std::string& framesPerSecond)
    {
        return ViewerBiz3::SetCameraNodeValue(kCameraId, "AcquisitionFrameRate", framesPerSecond) == 0;
    }

private:
    SimulatedAreaCamera()
    {
        setenv(ZYLGENICAM::SimulatedCameraRegistry::kEnvironmentVariable, "area", 1);
        auto listed = [](const std::vector<std::string>& cameras) {
            return std::find(cameras.begin(), cameras.end(), kCameraId) != cameras.end();
        };
        if (!Bench::LibrarySession::Instance().Discover(kSimulatedMask, listed))
            return;
        if (ViewerBiz3::OpenCamera(kCameraId) != 0)
            return;
        if (ViewerBiz3::SetCameraNodeValue(kCameraId, "Width", kSmallSide) != 0 ||
            ViewerBiz3::SetCameraNodeValue(kCameraId, "Height", kSmallSide) != 0)
            return;
        auto devices = ZYLGENICAM::SimulatedCameraRegistry::Instance().RequestedDevices();
        if (devices.empty())
            return;
        m_device = devices.front();
        GError* error = nullptr;
        m_raw = arv_camera_new_with_device(m_device->Device(), &error);
        g_clear_error(&error);
    }

    std::shared_ptr<ZYLGENICAM::SimulatedDevice> m_device;
    ArvCamera* m_raw = nullptr;
};

// Throughput and CPU per frame at the highest rate the simulated camera gives (argument 0),
// where its thread fills frames as fast as the CPU allows, and at a rate it holds by its clock.
void BM_AravisFramePath(benchmark::State& state)
{
    auto& camera = SimulatedAreaCamera::Instance();
    std::string rate = state.range(0) == 0 ? kHighestFrameRate : std::to_string(state.range(0));
    if (!camera.IsReady() || !camera.SetFrameRate(rate)) {
        state.SkipWithError("the simulated area camera is not available");
        return;
    }
    const double seconds = Bench::Seconds(3.0, 0.7);
    Bench::FrameSink sink(kCameraId);
    static Bench::AlternatingSides order;
    for (auto _ : state) {
        Bench::StreamWindow raw;
        Bench::StreamWindow library;
        auto streamRaw = [&] {
            Bench::RawAravisStream stream(camera.Raw(), ZYLGENICAM::AravisCamera::kBufferPoolSize);
            raw = stream.Run(seconds);
        };
        auto streamLibrary = [&] { library = Bench::LibrarySession::Instance().Stream(kCameraId, sink, seconds); };
        order.Run(streamLibrary, streamRaw);
        SetCounter(state, "raw_fps", raw.FramesPerSecond());
        SetCounter(state, "lib_fps", library.FramesPerSecond());
        SetCounter(state, "fps_ratio", Ratio(library.FramesPerSecond(), raw.FramesPerSecond()));
        SetCounter(state, "raw_cpu_us_per_frame", raw.CpuMicrosecondsPerFrame());
        SetCounter(state, "lib_cpu_us_per_frame", library.CpuMicrosecondsPerFrame());
        SetCounter(state, "cpu_ratio", Ratio(library.CpuMicrosecondsPerFrame(), raw.CpuMicrosecondsPerFrame()));
        SetCounter(state, "raw_lost_per_s", Ratio(raw.FramesLost(), raw.wallSeconds));
        SetCounter(state, "raw_camera_fps", raw.CameraFramesPerSecond());
        SetCounter(state, "lib_camera_fps", library.CameraFramesPerSecond());
        SetCounter(state, "raw_received_share", raw.ReceivedShare());
        SetCounter(state, "lib_received_share", library.ReceivedShare());
        SetCounter(state, "lib_lost_per_s", Ratio(library.FramesLost(), library.wallSeconds));
        SetCounter(state, "lib_delivered_per_s",
                   Ratio(static_cast<double>(library.hostDeliveries), library.wallSeconds));
    }
}
BENCHMARK(BM_AravisFramePath)
    ->Arg(0)
    ->Arg(1000)
    ->ArgName("fps")
    ->Iterations(1)
    ->Repetitions(static_cast<int>(Bench::Count(5, 1)))
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Age of each frame when the raw loop popped it and when the host's image callback got it
// (wall clock minus the buffer's timestamp), at the given frame rate.
void BM_AravisImageLatency(benchmark::State& state)
{
    auto& camera = SimulatedAreaCamera::Instance();
    if (!camera.IsReady() || !camera.SetFrameRate(std::to_string(state.range(0)))) {
        state.SkipWithError("the simulated area camera is not available");
        return;
    }
    const double seconds = Bench::Seconds(10.0, 0.1);
    Bench::FrameSink sink(kCameraId);
    for (auto _ : state) {
        Bench::LatencySamples raw;
        {
            Bench::RawAravisStream stream(camera.Raw(), ZYLGENICAM::AravisCamera::kBufferPoolSize);
            stream.Run(seconds, &raw);
        }
        Bench::LibrarySession::Instance().Stream(kCameraId, sink, seconds);
        Bench::LatencySamples library;
        for (const auto& frame : sink.Frames())
            library.Add(frame.realTimeNs - static_cast<int64_t>(frame.timestampNs));
        SetCounter(state, "raw_median_us", raw.Quantile(0.5) / 1e3);
        SetCounter(state, "raw_p99_us", raw.Quantile(0.99) / 1e3);
        SetCounter(state, "lib_median_us", library.Quantile(0.5) / 1e3);
        SetCounter(state, "lib_p99_us", library.Quantile(0.99) / 1e3);
        SetCounter(state, "raw_samples", static_cast<double>(raw.Count()));
        SetCounter(state, "lib_samples", static_cast<double>(library.Count()));
        // Every age, for the report's distribution picture.
        std::string directory = Bench::SamplesDirectory();
        if (!directory.empty()) {
            std::string prefix = directory + "/latency_" + std::to_string(state.range(0));
            raw.WriteTo(prefix + "_raw.txt");
            library.WriteTo(prefix + "_library.txt");
        }
    }
}
BENCHMARK(BM_AravisImageLatency)
    ->Arg(25)
    ->Arg(1000)
    ->ArgName("fps")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Time from a frame's timestamp to the statistics callback that first counts it. The camera
// runs slower than the publication period, so every frame gets a publication of its own and
// every frame reaches the image callback, which gives its timestamp.
void BM_AravisStatisticsLatency(benchmark::State& state)
{
    auto& camera = SimulatedAreaCamera::Instance();
    if (!camera.IsReady() || !camera.SetFrameRate(std::to_string(kStatisticsFrameRate))) {
        state.SkipWithError("the simulated area camera is not available");
        return;
    }
    const double seconds = Bench::Seconds(12.0, 0.5);
    Bench::FrameSink sink(kCameraId);
    for (auto _ : state) {
        sink.Clear();
        sink.SetReadFrameCount(true);
        ViewerBiz3::RegisterImageUpdateListener(kCameraId, &sink);
        ViewerBiz3::RegisterAcqStatisticUpdateListener(&sink);
        if (ViewerBiz3::StartGrab(kCameraId) == 0) {
            Bench::SleepSeconds(seconds);
            ViewerBiz3::StopGrab(kCameraId);
        }
        ViewerBiz3::UnRegisterAcqStatisticUpdateListener(&sink);
        ViewerBiz3::UnRegisterImageUpdateListener(kCameraId, &sink);
        sink.SetReadFrameCount(false);

        auto frames = sink.Frames();
        std::sort(frames.begin(), frames.end(),
                  [](const Bench::DeliveredFrame& a, const Bench::DeliveredFrame& b) { return a.frameId < b.frameId; });
        Bench::LatencySamples latencies;
        uint64_t counted = 0;
        uint64_t late = 0;
        for (const auto& publication : sink.StatisticsPublications()) {
            if (publication.frameCount <= counted || publication.frameCount > frames.size())
                continue;
            counted = publication.frameCount;
            int64_t latency = publication.realTimeNs - static_cast<int64_t>(frames[counted - 1].timestampNs);
            latencies.Add(latency);
            // A frame that came within 300 ms of the previous publication waits for the next read timeout.
            late += latency > kLateStatisticsNs ? 1 : 0;
        }
        SetCounter(state, "frames", static_cast<double>(frames.size()));
        SetCounter(state, "samples", static_cast<double>(latencies.Count()));
        SetCounter(state, "median_ms", latencies.Quantile(0.5) / 1e6);
        SetCounter(state, "p90_ms", latencies.Quantile(0.9) / 1e6);
        SetCounter(state, "p99_ms", latencies.Quantile(0.99) / 1e6);
        SetCounter(state, "late", static_cast<double>(late));
    }
}
BENCHMARK(BM_AravisStatisticsLatency)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
