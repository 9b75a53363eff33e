// The device manager as the host drives it: the address-conflict check, frame
// limits, renaming, show and image modes and shutdown silence.
#include <gtest/gtest.h>

#include "device/DeviceManager.h"
#include "support/common/CameraLogRecorder.h"
#include "support/common/DeviceScriptedDevices.h"
#include "support/common/ScriptedDeviceManagerTest.h"
#include "support/common/WaitUntil.h"

using DeviceScripted::AddGigECamera;
using Events = DeviceEventRecorder::Events;

namespace {

const char* const CONFLICT_LINE = "Ip conflict.Please check if there are devices with the same IP address.";

using DeviceManagerTest = ScriptedDeviceManagerTest;

} // namespace

// A camera with its adapter's address, or two with one address on one adapter, are
// refused before the SDK opens them, and every attempt says why.
TEST_F(DeviceManagerTest, CamerasWithAClashingAddressAreRefused)
{
    auto& clash = AddGigECamera("C1", "Clash", "169.254.10.1", "02:00:00:00:00:01");
    auto& first = AddGigECamera("D1", "Twin", "169.254.10.50", "02:00:00:00:00:02");
    auto& second = AddGigECamera("D2", "Twin", "169.254.10.50", "02:00:00:00:00:03");
    ASSERT_TRUE(bench.RunPass());
    CameraLogRecorder log;
    EXPECT_EQ(Manager().OpenCamera("Clash(C1)"), -10);
    EXPECT_TRUE(log.Contains("Error", CONFLICT_LINE));
    EXPECT_EQ(Manager().OpenCamera("Twin(D1)"), -10);
    EXPECT_EQ(Manager().OpenCamera("Twin(D2)"), -10);
    EXPECT_EQ(Manager().OpenCamera("Twin(D2)"), -10);
    EXPECT_EQ(log.Count(CONFLICT_LINE), 4u);
    EXPECT_EQ(clash.Counters().opens + first.Counters().opens + second.Counters().opens, 0u);
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
}

TEST_F(DeviceManagerTest, FrameLimitFollowsTheAcquisitionMode)
{
    auto& device = AddGigECamera("M1", "Multi", "169.254.10.21", "02:00:00:00:00:01");
    device.SetFrameScript(Scripted::FrameScript::Empty().AddFrames(1, 2).Then(Scripted::WhenExhausted::KeepTimingOut));
    ASSERT_TRUE(bench.RunPass());
    ASSERT_EQ(Manager().OpenCamera("Multi(M1)"), 0);
    auto startAndReadLimit = [&](const char* mode) -> uint64_t {
        EXPECT_EQ(Manager().SetCameraNodeValue("Multi(M1)", "AcquisitionMode", mode), 0);
        EXPECT_EQ(Manager().StartGrab("Multi(M1)"), 0);
        uint64_t limit = device.Counters().lastFrameLimit.value_or(0);
        Manager().StopGrab("Multi(M1)");
        return limit;
    };
    ASSERT_EQ(Manager().SetCameraNodeValue("Multi(M1)", "AcquisitionFrameCount", "5"), 0);
    EXPECT_EQ(startAndReadLimit("MultiFrame"), 5u);
    EXPECT_EQ(startAndReadLimit("SingleFrame"), 1u);
    EXPECT_EQ(startAndReadLimit("Continuous"), ZYLGENICAM::NO_FRAME_LIMIT);
}

TEST_F(DeviceManagerTest, RenamedCameraIsAnnouncedAndFoundByOldKeyAndNewName)
{
    AddGigECamera("S1", "A", "169.254.10.20", "02:00:00:00:00:01");
    ASSERT_TRUE(bench.RunPass());
    ASSERT_EQ(Manager().OpenCamera("A(S1)"), 0);
    ASSERT_EQ(Manager().ModifyCameraId("A(S1)", "B"), 0);
    EXPECT_EQ(bench.Events().Snapshot().cameraIds, std::vector<std::string>{"A(S1)=B(S1)"});
    std::string userId;
    EXPECT_EQ(Manager().GetCameraNodeValue("A(S1)", "DeviceUserID", userId), 0);
    EXPECT_EQ(userId, "B");
    EXPECT_EQ(Manager().GetCameraInfo("A(S1)", ViewerBiz3::CAM_NAME), "B(S1)");
    EXPECT_EQ(Manager().StartGrab("B(S1)"), 0) << "the new name reaches the camera";
    EXPECT_EQ(Manager().StopGrab("A(S1)"), 0);
    EXPECT_EQ(Manager().GetOpenedCameraIds(), std::vector<std::string>{"A(S1)"}) << "map keys unchanged";
    EXPECT_EQ(Manager().CloseCamera("B(S1)"), 0);
}

// Show and image modes are changed and announced only on cameras of their kind; the others
// answer -2, and so does a show-mode camera even after a change.
TEST_F(DeviceManagerTest, ModeChangesReachOnlyCamerasOfTheirKind)
{
    Scripted::DeviceDescription showMode = Scripted::AreaCamera("Q1", "Show", ZYLGENICAM::TL_SIMULATED);
    showMode.identity.modelName = "QV-RM100";
    Scripted::ScriptedSdk::Instance().AddDevice(showMode);
    Scripted::ScriptedSdk::Instance().AddDevice(Scripted::ProfileCamera("F100", "Profile", ZYLGENICAM::TL_SIMULATED));
    AddGigECamera("A1", "Plain", "169.254.10.20", "02:00:00:00:00:01");
    ASSERT_TRUE(bench.RunPass());

    EXPECT_EQ(Manager().SetSLCameraShowMode("Show(Q1)", 2), -2);
    EXPECT_EQ(Manager().GetSLCameraShowMode("Show(Q1)"), 2);
    EXPECT_EQ(Manager().SetSLCameraShowMode("Plain(A1)", 2), -2);
    EXPECT_EQ(Manager().GetSLCameraShowMode("Plain(A1)"), -2);

    EXPECT_EQ(Manager().SetCameraImageMode("Profile(F100)", 3, false), -1) << "not open";
    ASSERT_EQ(Manager().OpenCamera("Profile(F100)"), 0);
    ASSERT_EQ(Manager().OpenCamera("Plain(A1)"), 0);
    int modeBefore = Manager().GetCameraImageMode("Profile(F100)");
    // Mode 3 is only announced; the camera keeps its mode.
    EXPECT_EQ(Manager().SetCameraImageMode("Profile(F100)", 3, false), 0);
    EXPECT_EQ(Manager().GetCameraImageMode("Profile(F100)"), modeBefore);
    EXPECT_EQ(Manager().SetCameraImageMode("Plain(A1)", 3, true), -2);
    EXPECT_EQ(Manager().GetCameraImageMode("Plain(A1)"), -2);

    Events events = bench.Events().Snapshot();
    EXPECT_EQ(events.showModes, std::vector<std::string>{"Show(Q1)=2"});
    EXPECT_EQ(events.imageModes, std::vector<std::string>{"Profile(F100)=3"});
}

// A manager released while a camera grabs and a pass runs announces nothing, drops the pass and
// still closes the camera and gives every SDK object back.
TEST_F(DeviceManagerTest, NothingIsAnnouncedWhileTheManagerShutsDown)
{
    auto& device = AddGigECamera("A1", "Busy", "169.254.10.20", "02:00:00:00:00:01");
    device.SetFrameScript(Scripted::FrameScript::Empty().AddFrames(1, 3).Then(Scripted::WhenExhausted::KeepTimingOut));
    ASSERT_TRUE(bench.RunPass());
    ASSERT_EQ(Manager().OpenCamera("Busy(A1)"), 0);
    ASSERT_EQ(Manager().StartGrab("Busy(A1)"), 0);
    ASSERT_TRUE(device.WaitUntil([](const Scripted::DeviceCounters& c) { return c.imagesReleased == 3; }));
    Scripted::ScriptedSdk::Instance().SetDiscoveryDelay(std::chrono::milliseconds(500));
    Manager().RefreshDeviceList(1);
    ASSERT_TRUE(WaitUntil([] { return Scripted::ScriptedSdk::Instance().Counters().discoveries >= 2; }));
    bench.Events().Clear();
    bench.ReleaseManager();
    Events events = bench.Events().Snapshot();
    EXPECT_TRUE(events.deviceLists.empty()) << "neither the dropped pass nor the closing camera announce";
    EXPECT_EQ(events.images, 0u) << "not even the empty frame a stop sends";
    EXPECT_EQ(device.Counters().closes, 1u) << "the camera was closed all the same";
    EXPECT_EQ(device.Counters().ImagesOutstanding(), 0u);
    EXPECT_EQ(device.Counters().recordsCreated, device.Counters().recordsDestroyed);
    EXPECT_EQ(device.Counters().camerasCreated, device.Counters().camerasDestroyed);
    EXPECT_EQ(Scripted::ScriptedSdk::Instance().Counters().misuses, 0u);
}
