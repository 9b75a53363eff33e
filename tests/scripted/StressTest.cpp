// Several host threads call the exported functions at random on scripted
// cameras while a fault thread makes cameras vanish (device lost, then back
// with a fresh device under the same serial number). Afterwards every frame the
// SDK handed out was released once, every handle was closed and destroyed, no
// library thread is left and the settings file holds what the host set.
//
// VB3_STRESS_SECONDS sets the duration (default 20 s, so that the three CI
// variants, plain and two sanitizers, stay within the CI budget; give more for a
// soak run); VB3_STRESS_SEED replays a run.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "ViewerBiz3.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/DeviceScriptedDevices.h"
#include "support/common/StressApiOperations.h"
#include "support/common/ProcessThreads.h"
#include "support/common/StressRun.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"
#include "support/scripted/ScriptedSdk.h"

using namespace ViewerBiz3;

namespace {

constexpr std::size_t HostThreads = 6;
constexpr int Transports = ZYLGENICAM::TL_GIGE | ZYLGENICAM::TL_USB;

// Frames every 2 ms with now and then an incomplete one (code with an image).
Scripted::FrameScript StressFrames()
{
    return Scripted::FrameScript::Empty()
        .AddFrames(1, 40)
        .Add(Scripted::FrameStep::Code(ZYLGENICAM::SDK_ERROR).WithImage())
        .Then(Scripted::WhenExhausted::Repeat)
        .Period(std::chrono::milliseconds(2));
}

std::vector<Scripted::DeviceDescription> StressCameras()
{
    std::vector<Scripted::DeviceDescription> cameras;
    for (int index = 1; index <= 3; ++index) {
        const std::string number = std::to_string(index);
        cameras.push_back(DeviceScripted::GigECamera("S" + number, "Cam" + number, "169.254.10.2" + number,
                                                     "00:11:22:33:44:5" + number));
    }
    cameras.push_back(Scripted::ProfileCamera("F100", "Prof", ZYLGENICAM::TL_USB));
    for (auto& camera : cameras) {
        camera.frames = StressFrames();
    }
    return cameras;
}

StressScene ScriptedScene()
{
    StressScene scene;
    for (const char* name :
         {"Cam1(S1)", "Cam1b(S1)", "Cam2(S2)", "Cam2b(S2)", "Cam3(S3)", "Prof(F100)", "Profb(F100)", "Nobody(0)"}) {
        scene.cameraIds.push_back(name);
    }
    scene.renames = {{"Cam1(S1)", "Cam1b"}, {"Cam1b(S1)", "Cam1"},   {"Cam2(S2)", "Cam2b"},
                     {"Cam2b(S2)", "Cam2"}, {"Prof(F100)", "Profb"}, {"Profb(F100)", "Prof"}};
    scene.nodes = {{"Width", {"320", "640", "99999"}},
                   {"Height", {"240", "480"}},
                   {"AcquisitionMode", {"Continuous", "NoSuchMode"}},
                   {"NoSuchFeature", {"1"}}};
    scene.refreshTypes = Transports;
    scene.transportMask = Transports;
    return scene;
}

// Every device generation the test made, so counters of lost ones are checked too.
class DeviceGenerations {
public:
    void Add(Scripted::ScriptedDevice& device)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_devices.push_back(&device);
    }
    std::vector<Scripted::ScriptedDevice*> All() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_devices;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Scripted::ScriptedDevice*> m_devices;
};

// Loses a random present camera now and then and brings it back a moment later as a
// fresh device (a camera power-cycled by its user).
class LossInjector {
public:
    LossInjector(std::uint32_t seed, DeviceGenerations& generations) : m_random(seed), m_generations(generations) {}
    ~LossInjector() { Stop(); }

    void Start()
    {
        m_thread = std::thread([this] { Run(); });
    }
    void Stop()
    {
        m_stop.store(true);
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }
    std::uint64_t Losses() const { return m_losses.load(); }

private:
    void Run()
    {
        const auto cameras = StressCameras();
        while (!m_stop.load()) {
            SleepMilliseconds(std::uniform_int_distribution<int>(500, 1500)(m_random));
            const auto& description = PickVictim(cameras);
            Scripted::ScriptedDevice* device = Current(description.identity.serialNumber);
            device->Lose();
            device->SetPresent(false);
            ++m_losses;
            SleepMilliseconds(std::uniform_int_distribution<int>(200, 1500)(m_random));
            m_generations.Add(Scripted::ScriptedSdk::Instance().AddDevice(description));
        }
    }

    // An open camera when there is one: only an open camera has a loss to notice.
    const Scripted::DeviceDescription& PickVictim(const std::vector<Scripted::DeviceDescription>& cameras)
    {
        std::vector<const Scripted::DeviceDescription*> open;
        for (const std::string& id : GetOpenedCameraIds()) {
            for (const auto& camera : cameras) {
                if (id.find("(" + camera.identity.serialNumber + ")") != std::string::npos) {
                    open.push_back(&camera);
                }
            }
        }
        if (open.empty()) {
            return cameras[std::uniform_int_distribution<std::size_t>(0, cameras.size() - 1)(m_random)];
        }
        return *open[std::uniform_int_distribution<std::size_t>(0, open.size() - 1)(m_random)];
    }

    Scripted::ScriptedDevice* Current(const std::string& serial) const
    {
        Scripted::ScriptedDevice* current = nullptr;
        for (Scripted::ScriptedDevice* device : m_generations.All()) {
            if (device->SerialNumber() == serial) {
                current = device;
            }
        }
        return current;
    }

    void SleepMilliseconds(int milliseconds)
    {
        const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        while (!m_stop.load() && std::chrono::steady_clock::now() < until) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    std::mt19937 m_random;
    DeviceGenerations& m_generations;
    std::atomic<bool> m_stop{false};
    std::atomic<std::uint64_t> m_losses{0};
    std::thread m_thread;
};

} // namespace

TEST(Stress, HostThreadsSurviveLostCamerasAndLeaveNothingBehind)
{
    const std::uint32_t seed = StressSeed(20261123);
    const std::chrono::seconds duration = StressDuration(std::chrono::seconds(20));
    TempDirectory directory;
    WriteTextFile(directory.File("Configuration.ini"), "[User]\n");

    StressWatchdog watchdog(HostThreads, std::chrono::seconds(30));
    // A first cycle lets runtimes start the threads they keep for the whole process.
    ASSERT_EQ(-1, Init());
    ASSERT_EQ(0, UnInit());
    WaitForProcessThreadCount(0, std::chrono::seconds(1));
    const std::size_t threadsBefore = ProcessThreadCount();

    Scripted::ScriptedSdk::Instance().Reset();
    DeviceGenerations generations;
    for (auto& description : StressCameras()) {
        generations.Add(Scripted::ScriptedSdk::Instance().AddDevice(description));
    }
    ASSERT_EQ(-1, Init());
    auto applicationDirectory = std::make_unique<ApplicationDirectoryScope>(directory.Path());
    Utilities::StartLogFile(directory.Path(), 1 << 20);
    ASSERT_EQ(0, SetTLTypeList(Transports));

    StressListener listener;
    StressListener lossCounter;
    StressImageSink sink;
    ASSERT_EQ(0, RegisterLoggerUpdateListener(&lossCounter));
    // One registration: the identifier is not kept, the sink hears every camera.
    ASSERT_EQ(0, RegisterImageUpdateListener("", &sink));
    ASSERT_EQ(0, RegisterAcqStatisticUpdateListener(&sink));
    StressRegisterAll(listener);

    const StressScene scene = ScriptedScene();
    StressOutcomes outcomes;
    LossInjector losses(seed, generations);
    losses.Start();
    const StressTotals totals =
        RunStressWorkers(HostThreads, seed, duration, StressApiOperations(scene, listener, outcomes), watchdog);
    losses.Stop();

    const std::vector<std::string> settings = StressCloseAllAndUnInit(watchdog);

    std::printf(
        "stress: %llu camera losses injected, %llu noticed (\"Camera is lost.\"), %llu frames, "
        "%llu host events; all survived\n",
        static_cast<unsigned long long>(losses.Losses()), static_cast<unsigned long long>(lossCounter.lossLines.load()),
        static_cast<unsigned long long>(sink.frames.load()), static_cast<unsigned long long>(listener.events.load()));
    outcomes.Print();
    EXPECT_GT(totals.operations, 0u);
    EXPECT_TRUE(WaitForProcessThreadCount(threadsBefore, std::chrono::seconds(10)))
        << ProcessThreadCount() << " threads after UnInit, " << threadsBefore << " before Init";
    for (Scripted::ScriptedDevice* device : generations.All()) {
        const Scripted::DeviceCounters counters = device->Counters();
        EXPECT_EQ(counters.imagesHandedOut, counters.imagesReleased) << device->SerialNumber();
        EXPECT_EQ(0u, counters.doubleReleases) << device->SerialNumber();
        EXPECT_EQ(0u, counters.imageUsesAfterRelease) << device->SerialNumber();
        EXPECT_EQ(counters.camerasCreated, counters.camerasDestroyed) << device->SerialNumber();
        EXPECT_EQ(counters.recordsCreated, counters.recordsDestroyed) << device->SerialNumber();
    }
    EXPECT_EQ(0u, Scripted::ScriptedSdk::Instance().Counters().misuses);

    // The settings file reads back as the host left it.
    ASSERT_EQ(-1, Init());
    applicationDirectory = std::make_unique<ApplicationDirectoryScope>(directory.Path());
    ASSERT_EQ(-1, Init());
    EXPECT_EQ(settings, StressAllParameters());
    EXPECT_EQ(0, UnInit());
}
