// GigE Vision over loopback, inside the program's own network namespace: Aravis's fake GigE
// camera streamed by Aravis's own arv-camera-test-0.8, by a plain Aravis pop/push loop and
// through the library, one after the other in the same run (the camera admits one controller
// at a time). Frames per second and lost frames side by side.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "BenchConfig.h"
#include "BenchCounters.h"
#include "FrameSink.h"
#include "LibrarySession.h"
#include "RawAravisStream.h"
#include "ViewerBiz3.h"
#include "sdk/aravis/AravisCamera.h"
#include "support/common/FakeGigeCamera.h"
#include "support/common/PrivateNetworkNamespace.h"

using Bench::Ratio;
using Bench::SetCounter;

namespace {

constexpr const char* kSerial = "GV01";
constexpr int kSmallSide = 64;
// The fake GigE camera's highest AcquisitionFrameRate.
constexpr int kHighestFrameRate = 1000;

struct ToolFigures {
    double framesPerSecond = 0;
    double completed = 0;
    double lost = 0; // missing frames, failures, underruns, aborted buffers
};

// Runs a command line through the shell and returns what it printed (stdout and stderr).
std::string RunAndCapture(const std::string& commandLine)
{
    std::string output;
    FILE* pipe = popen((commandLine + " 2>&1").c_str(), "r");
    if (pipe == nullptr)
        return output;
    std::array<char, 4096> chunk{};
    size_t read = 0;
    while ((read = std::fread(chunk.data(), 1, chunk.size(), pipe)) > 0)
        output.append(chunk.data(), read);
    pclose(pipe);
    return output;
}

double Field(const std::string& output, const std::string& name)
{
    auto at = output.find(name);
    if (at == std::string::npos)
        return 0;
    at = output.find('=', at);
    return at == std::string::npos ? 0 : std::strtod(output.c_str() + at + 1, nullptr);
}

// arv-camera-test prints one "N frames/s" line a second and its stream statistics at the end;
// the first second is left out as start-up.
ToolFigures ParseCameraTest(const std::string& output)
{
    ToolFigures figures;
    std::istringstream lines(output);
    std::string line;
    int seconds = 0;
    double frames = 0;
    while (std::getline(lines, line)) {
        if (line.find("frames/s") == std::string::npos)
            continue;
        if (seconds++ > 0)
            frames += std::strtod(line.c_str(), nullptr);
    }
    figures.framesPerSecond = seconds > 1 ? frames / (seconds - 1) : 0;
    figures.completed = Field(output, "n_completed_buffers");
    figures.lost = Field(output, "n_missing_frames") + Field(output, "n_failures") + Field(output, "n_underruns") +
                   Field(output, "n_aborted");
    return figures;
}

Bench::StreamWindow StreamWithPlainAravis(double seconds)
{
    Bench::StreamWindow window;
    ArvCamera* camera = Bench::OpenRawGigeCamera(FakeGigeCamera::kAddress);
    if (camera == nullptr)
        return window;
    arv_camera_set_region(camera, 0, 0, kSmallSide, kSmallSide, nullptr);
    arv_camera_set_frame_rate(camera, kHighestFrameRate, nullptr);
    {
        Bench::RawAravisStream stream(camera, ZYLGENICAM::AravisCamera::kBufferPoolSize);
        window = stream.Run(seconds);
    }
    g_object_unref(camera);
    return window;
}

Bench::StreamWindow StreamThroughLibrary(const std::string& id, double seconds)
{
    Bench::StreamWindow window;
    if (ViewerBiz3::OpenCamera(id) != 0)
        return window;
    ViewerBiz3::SetCameraNodeValue(id, "Width", std::to_string(kSmallSide));
    ViewerBiz3::SetCameraNodeValue(id, "Height", std::to_string(kSmallSide));
    ViewerBiz3::SetCameraNodeValue(id, "AcquisitionFrameRate", std::to_string(kHighestFrameRate));
    Bench::FrameSink sink(id);
    window = Bench::LibrarySession::Instance().Stream(id, sink, seconds);
    ViewerBiz3::CloseCamera(id);
    return window;
}

void BM_GigeLoopback(benchmark::State& state)
{
    if (!InPrivateNetworkNamespace()) {
        state.SkipWithError("no private network namespace: GigE Vision is never run on the host's network");
        return;
    }
    FakeGigeCamera fake(kSerial);
    if (!fake.Start()) {
        state.SkipWithError("arv-fake-gv-camera-0.8 did not start");
        return;
    }
    const int seconds = static_cast<int>(Bench::Count(4, 1));
    for (auto _ : state) {
        char command[256];
        std::snprintf(command, sizeof command, "arv-camera-test-0.8 --duration=%d -w %d -h %d -f %d", seconds + 1,
                      kSmallSide, kSmallSide, kHighestFrameRate);
        ToolFigures tool = ParseCameraTest(RunAndCapture(command));
        Bench::StreamWindow raw = StreamWithPlainAravis(seconds);
        auto ids = Bench::LibrarySession::Instance().DiscoverGigeBySerial({kSerial});
        if (ids.empty()) {
            state.SkipWithError("the library did not list the fake GigE camera");
            return;
        }
        Bench::StreamWindow library = StreamThroughLibrary(ids.front(), seconds);
        SetCounter(state, "tool_fps", tool.framesPerSecond);
        SetCounter(state, "tool_lost", tool.lost);
        SetCounter(state, "tool_completed", tool.completed);
        SetCounter(state, "raw_fps", raw.FramesPerSecond());
        SetCounter(state, "raw_lost", raw.FramesLost());
        SetCounter(state, "raw_camera_fps", raw.CameraFramesPerSecond());
        SetCounter(state, "lib_camera_fps", library.CameraFramesPerSecond());
        SetCounter(state, "lib_fps", library.FramesPerSecond());
        SetCounter(state, "lib_lost", library.FramesLost());
        SetCounter(state, "lib_to_tool_ratio", Ratio(library.FramesPerSecond(), tool.framesPerSecond));
        SetCounter(state, "lib_to_raw_ratio", Ratio(library.FramesPerSecond(), raw.FramesPerSecond()));
        SetCounter(state, "window_s", library.wallSeconds);
    }
}
BENCHMARK(BM_GigeLoopback)
    ->Iterations(1)
    ->Repetitions(static_cast<int>(Bench::Count(3, 1)))
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
