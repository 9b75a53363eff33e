// How the device list scales: one discovery pass over 10, 100 and 1000 scripted devices
// with 0, 10 and 100 of them opened, and the per-call cost of GetCameraInfo and
// GetCameraNodeValue by key and by name with 1, 100 and 1000 cameras listed.
#include <benchmark/benchmark.h>

#include <chrono>
#include <utility>
#include <set>
#include <string>
#include <vector>

#include "BenchConfig.h"
#include "LibrarySession.h"
#include "ProcessStats.h"
#include "ScriptedFleet.h"
#include "ViewerBiz3.h"

namespace {

constexpr uint64_t kFleetMask = ZYLGENICAM::TL_GIGE | ZYLGENICAM::TL_SIMULATED;
constexpr const char* kRenamedUserId = "Renamed";

std::string SerialOf(const std::string& cameraId)
{
    auto open = cameraId.rfind('(');
    auto close = cameraId.rfind(')');
    if (open == std::string::npos || close == std::string::npos || close < open)
        return "";
    return cameraId.substr(open + 1, close - open - 1);
}

std::string FleetSerial(std::size_t index)
{
    return Bench::ScriptedFleet::Instance().FleetDevice(index).SerialNumber();
}

// The listed identifier of a device (its name may have changed since it was opened).
std::string ListedId(const std::string& serial)
{
    for (const auto& id : Bench::LibrarySession::Instance().DeviceList().Cameras())
        if (SerialOf(id) == serial)
            return id;
    return "";
}

// Exactly the first `listed` fleet devices visible, the first `opened` of them open.
bool Arrange(std::size_t listed, std::size_t opened)
{
    // Google Benchmark calls a function several times while it sizes the run: keep the scene.
    static std::pair<std::size_t, std::size_t> arranged{0, 0};
    if (arranged == std::make_pair(listed, opened) && ViewerBiz3::GetOpenedCameraIds().size() == opened)
        return true;
    arranged = {0, 0};
    auto& fleet = Bench::ScriptedFleet::Instance();
    auto& session = Bench::LibrarySession::Instance();
    fleet.ShowStreamingCameras(false);
    fleet.ShowFleet(listed);
    std::set<std::string> keepOpen;
    for (std::size_t i = 0; i < opened; ++i)
        keepOpen.insert(FleetSerial(i));
    std::set<std::string> alreadyOpen;
    for (const auto& id : ViewerBiz3::GetOpenedCameraIds()) {
        if (keepOpen.count(SerialOf(id)) != 0)
            alreadyOpen.insert(SerialOf(id));
        else
            ViewerBiz3::CloseCamera(id);
    }
    auto complete = [&](const std::vector<std::string>& cameras) { return cameras.size() == listed; };
    if (!session.Discover(kFleetMask, complete, std::chrono::seconds(120)))
        return false;
    for (const auto& serial : keepOpen)
        if (alreadyOpen.count(serial) == 0 && ViewerBiz3::OpenCamera(ListedId(serial)) != 0)
            return false;
    session.DeviceList().WaitUntilQuiet(std::chrono::milliseconds(Bench::Count(300, 100)));
    arranged = {listed, opened};
    return true;
}

// The SDK calls a pass makes, without the layer: the part of a pass that is not ours.
Bench::LibrarySession::PassTime SdkCallsOfOnePass(std::size_t opened)
{
    double cpuStart = Bench::ProcessCpuSeconds();
    double start = Bench::WallSeconds();
    std::vector<ZYLGENICAM::ICamera*> created;
    std::size_t index = 0;
    for (auto* record : ZYLGENICAM::DiscoveryByTLType(kFleetMask)) {
        benchmark::DoNotOptimize(record->GetTLType());
        benchmark::DoNotOptimize(record->GetSerialNumber());
        benchmark::DoNotOptimize(record->GetModelName());
        benchmark::DoNotOptimize(record->GetUserDefinedName());
        benchmark::DoNotOptimize(record->GetGigEInfo(ZYLGENICAM::GIGE_MAC));
        if (index++ >= opened) {
            auto* camera = ZYLGENICAM::CreateCamera(record);
            benchmark::DoNotOptimize(record->GetAccessStatus());
            benchmark::DoNotOptimize(record->GetDeviceText());
            benchmark::DoNotOptimize(record->GetDeviceText2());
            if (camera != nullptr) {
                benchmark::DoNotOptimize(camera->IsConnected());
                benchmark::DoNotOptimize(camera->IsOpen());
                benchmark::DoNotOptimize(camera->IsGrabbing());
                benchmark::DoNotOptimize(camera->GetDeviceInfo()->GetTLType());
                created.push_back(camera);
            }
            for (int item : {ZYLGENICAM::GIGE_IP, ZYLGENICAM::GIGE_MASK, ZYLGENICAM::GIGE_GATEWAY,
                             ZYLGENICAM::GIGE_HOST_INTERFACE_IP})
                benchmark::DoNotOptimize(record->GetGigEInfo(item));
        }
        record->Destroy();
    }
    // A pass deletes the previous pass's camera objects, and with them their handles.
    for (auto* camera : created)
        camera->Destroy();
    Bench::LibrarySession::PassTime time;
    time.wallSeconds = Bench::WallSeconds() - start;
    time.cpuSeconds = Bench::ProcessCpuSeconds() - cpuStart;
    return time;
}

void BM_DiscoveryPass(benchmark::State& state)
{
    auto devices = static_cast<std::size_t>(state.range(0));
    auto opened = static_cast<std::size_t>(state.range(1));
    if (!Arrange(devices, opened)) {
        state.SkipWithError("the scripted fleet could not be listed and opened");
        return;
    }
    auto& session = Bench::LibrarySession::Instance();
    Bench::LibrarySession::PassTime pass;
    Bench::LibrarySession::PassTime sdk;
    pass.wallSeconds = 0;
    sdk.wallSeconds = 0;
    for (auto _ : state) {
        auto sdkOnly = SdkCallsOfOnePass(opened);
        auto timed = session.TimedPass();
        if (timed.wallSeconds < 0) {
            state.SkipWithError("a discovery pass did not finish");
            return;
        }
        sdk.wallSeconds += sdkOnly.wallSeconds;
        sdk.cpuSeconds += sdkOnly.cpuSeconds;
        pass.wallSeconds += timed.wallSeconds;
        pass.cpuSeconds += timed.cpuSeconds;
        state.SetIterationTime(timed.wallSeconds);
    }
    double msPerPass = 1e3 / static_cast<double>(state.iterations());
    state.counters["pass_ms"] = pass.wallSeconds * msPerPass;
    state.counters["sdk_ms"] = sdk.wallSeconds * msPerPass;
    state.counters["layer_ms"] = (pass.wallSeconds - sdk.wallSeconds) * msPerPass;
    state.counters["pass_cpu_ms"] = pass.cpuSeconds * msPerPass;
    state.counters["sdk_cpu_ms"] = sdk.cpuSeconds * msPerPass;
    state.counters["layer_cpu_ms"] = (pass.cpuSeconds - sdk.cpuSeconds) * msPerPass;
    state.counters["devices"] = static_cast<double>(devices);
    state.counters["opened"] = static_cast<double>(opened);
}

void DiscoveryArguments(benchmark::internal::Benchmark* benchmark)
{
    std::vector<int64_t> sizes = Bench::SmokeRun() ? std::vector<int64_t>{3, 5} : std::vector<int64_t>{10, 100, 1000};
    std::vector<int64_t> opened = Bench::SmokeRun() ? std::vector<int64_t>{0, 2} : std::vector<int64_t>{0, 10, 100};
    for (auto size : sizes)
        for (auto open : opened)
            if (open <= size)
                benchmark->Args({size, open});
}
BENCHMARK(BM_DiscoveryPass)
    ->Apply(DiscoveryArguments)
    ->ArgNames({"devices", "opened"})
    ->Iterations(static_cast<int64_t>(Bench::Count(20, 2)))
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// The camera the lookups ask for: the first fleet device, open and renamed, so that its name
// differs from its key and a lookup by name has to walk the map.
struct LookupTarget {
    std::string key;
    std::string name;
};

bool PrepareLookups(std::size_t listed, std::size_t opened, LookupTarget& target)
{
    if (!Arrange(listed, opened))
        return false;
    std::string serial = FleetSerial(0);
    target.key.clear();
    for (const auto& id : ViewerBiz3::GetOpenedCameraIds())
        if (SerialOf(id) == serial)
            target.key = id;
    if (target.key.empty())
        return false;
    target.name = std::string(kRenamedUserId) + "(" + serial + ")";
    if (ViewerBiz3::GetCameraInfo(target.key, ViewerBiz3::CAM_NAME) != target.name &&
        ViewerBiz3::ModifyCameraId(target.key, kRenamedUserId) != 0)
        return false;
    return ViewerBiz3::GetCameraInfo(target.name, ViewerBiz3::CAM_NAME) == target.name;
}

void BM_GetCameraInfo(benchmark::State& state)
{
    auto listed = static_cast<std::size_t>(state.range(0));
    bool byName = state.range(1) != 0;
    LookupTarget target;
    if (!PrepareLookups(listed, 1, target)) {
        state.SkipWithError("the lookup target could not be prepared");
        return;
    }
    const std::string& id = byName ? target.name : target.key;
    for (auto _ : state)
        benchmark::DoNotOptimize(ViewerBiz3::GetCameraInfo(id, ViewerBiz3::CAM_MODEL_NAME));
    state.counters["listed"] = static_cast<double>(listed);
}

// Node values are read from opened cameras, so here every listed camera is open.
void BM_GetCameraNodeValue(benchmark::State& state)
{
    auto listed = static_cast<std::size_t>(state.range(0));
    bool byName = state.range(1) != 0;
    LookupTarget target;
    if (!PrepareLookups(listed, listed, target)) {
        state.SkipWithError("the lookup target could not be prepared");
        return;
    }
    const std::string& id = byName ? target.name : target.key;
    std::string value;
    for (auto _ : state) {
        int result = ViewerBiz3::GetCameraNodeValue(id, "Width", value);
        benchmark::DoNotOptimize(result);
    }
    state.counters["listed"] = static_cast<double>(listed);
}

void LookupArguments(benchmark::internal::Benchmark* benchmark)
{
    std::vector<int64_t> sizes = Bench::SmokeRun() ? std::vector<int64_t>{1, 3} : std::vector<int64_t>{1, 100, 1000};
    for (auto size : sizes)
        for (int64_t byName : {0, 1})
            benchmark->Args({size, byName});
}
BENCHMARK(BM_GetCameraInfo)->Apply(LookupArguments)->ArgNames({"listed", "by_name"});
BENCHMARK(BM_GetCameraNodeValue)->Apply(LookupArguments)->ArgNames({"listed", "by_name"});

} // namespace
