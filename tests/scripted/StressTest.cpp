// Host threads call the exported functions at random on scripted cameras while a fault thread makes
// cameras vanish (lost, then back as a fresh device under the same serial). Afterwards every frame
// was released once and every SDK handle closed and destroyed. 20 s by default (CI runs it thrice).
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/common/DeviceScriptedDevices.h"
#include "support/common/StressApiOperations.h"
#include "support/common/WaitUntil.h"
#include "support/scripted/ScriptedSdk.h"

namespace {

std::vector<Scripted::DeviceDescription> StressCameras()
{
    std::vector<Scripted::DeviceDescription> cameras;
    for (const std::string number : {"1", "2", "3"}) {
        cameras.push_back(DeviceScripted::GigECamera("S" + number, "Cam" + number, "169.254.10.2" + number,
                                                     "00:11:22:33:44:5" + number));
    }
    cameras.push_back(Scripted::ProfileCamera("F100", "Prof", ZYLGENICAM::TL_USB));
    for (auto& camera : cameras) {
        // Frames every 2 ms with now and then an incomplete one (code with an image).
        camera.frames = Scripted::FrameScript::Empty()
                            .AddFrames(1, 40)
                            .Add(Scripted::FrameStep::Code(ZYLGENICAM::SDK_ERROR).WithImage())
                            .Then(Scripted::WhenExhausted::Repeat)
                            .Period(std::chrono::milliseconds(2));
    }
    return cameras;
}

// Loses a camera now and then, an open one when there is one (only an open camera has a loss to
// notice), and brings it back a moment later as a fresh device: a camera power-cycled by its user.
class LossInjector {
public:
    explicit LossInjector(std::uint32_t seed) : m_random(seed)
    {
        Scripted::ScriptedSdk::Instance().Reset();
        for (const auto& camera : m_cameras) {
            m_devices.push_back(&Scripted::ScriptedSdk::Instance().AddDevice(camera));
        }
    }

    void Start()
    {
        m_thread = std::thread([this] { Run(); });
    }

    // Every device generation made, so that counters of lost ones are checked too.
    std::vector<Scripted::ScriptedDevice*> Stop()
    {
        m_stop = true;
        m_thread.join();
        std::printf("stress: %zu camera losses injected\n", m_devices.size() - m_cameras.size());
        return m_devices;
    }

private:
    void Run()
    {
        while (!Pause(500, 1500)) {
            const Scripted::DeviceDescription& victim = PickVictim();
            Scripted::ScriptedDevice* current = *std::find_if(m_devices.rbegin(), m_devices.rend(), [&](auto* device) {
                return device->SerialNumber() == victim.identity.serialNumber;
            });
            current->Lose();
            current->SetPresent(false);
            Pause(200, 1500);
            m_devices.push_back(&Scripted::ScriptedSdk::Instance().AddDevice(victim));
        }
    }

    const Scripted::DeviceDescription& PickVictim()
    {
        const std::vector<std::string> open = ViewerBiz3::GetOpenedCameraIds();
        const std::string id = open.empty() ? "" : open[Pick(open.size())];
        for (const auto& camera : m_cameras) {
            if (id.find("(" + camera.identity.serialNumber + ")") != std::string::npos) {
                return camera;
            }
        }
        return m_cameras[Pick(m_cameras.size())];
    }

    std::size_t Pick(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(m_random); }

    // True when stopped meanwhile.
    bool Pause(int shortestMilliseconds, int longestMilliseconds)
    {
        const int pause = std::uniform_int_distribution<int>(shortestMilliseconds, longestMilliseconds)(m_random);
        return WaitUntil([this] { return m_stop.load(); }, std::chrono::milliseconds(pause));
    }

    const std::vector<Scripted::DeviceDescription> m_cameras = StressCameras();
    std::vector<Scripted::ScriptedDevice*> m_devices;
    std::mt19937 m_random;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

} // namespace

TEST(Stress, HostThreadsSurviveLostCamerasAndLeaveNothingBehind)
{
    const std::uint32_t seed = StressSeed(20261123);
    StressScene scene;
    scene.cameraIds = {"Cam1(S1)", "Cam1b(S1)",  "Cam2(S2)",    "Cam2b(S2)",
                       "Cam3(S3)", "Prof(F100)", "Profb(F100)", "Nobody(0)"};
    scene.transports = ZYLGENICAM::TL_GIGE | ZYLGENICAM::TL_USB;
    LossInjector losses(seed);
    StressSession session(scene);
    ASSERT_FALSE(HasFailure());
    losses.Start();
    session.Run(6, seed, StressDuration(std::chrono::seconds(20)));
    const std::vector<Scripted::ScriptedDevice*> devices = losses.Stop();
    session.Finish();

    for (Scripted::ScriptedDevice* device : devices) {
        const Scripted::DeviceCounters counters = device->Counters();
        EXPECT_EQ(counters.imagesHandedOut, counters.imagesReleased) << device->SerialNumber();
        EXPECT_EQ(0u, counters.doubleReleases) << device->SerialNumber();
        EXPECT_EQ(0u, counters.imageUsesAfterRelease) << device->SerialNumber();
        EXPECT_EQ(counters.camerasCreated, counters.camerasDestroyed) << device->SerialNumber();
        EXPECT_EQ(counters.recordsCreated, counters.recordsDestroyed) << device->SerialNumber();
    }
    EXPECT_EQ(0u, Scripted::ScriptedSdk::Instance().Counters().misuses);
}
