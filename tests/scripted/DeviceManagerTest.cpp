// The device manager as the host drives it: opening with the address-conflict
// check, acquisition with frame limits, information, focus, renaming, show and
// image modes, shutdown silence and many host threads at once.
#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "device/DeviceManager.h"
#include "support/common/CameraLogRecorder.h"
#include "support/common/DeviceScriptedDevices.h"
#include "support/common/ScriptedDeviceManagerTest.h"
#include "support/common/WaitUntil.h"

using DeviceScripted::AddGigECamera;
using Events = DeviceEventRecorder::Events;

namespace {

const char* const CONFLICT_LINE = "Ip conflict.Please check if there are devices with the same IP address.";

class DeviceManagerTest : public ScriptedDeviceManagerTest {
protected:
    // Adds the devices, runs one pass and checks the identifiers are listed.
    void Discover(const std::vector<std::string>& expectedIds)
    {
        ASSERT_TRUE(bench.RunPass());
        std::vector<std::string> listed = bench.Events().Snapshot().LastWholeList().second;
        for (const std::string& id : expectedIds)
            ASSERT_NE(std::find(listed.begin(), listed.end(), id), listed.end()) << id << " not discovered";
    }
};

} // namespace

TEST_F(DeviceManagerTest, UnknownIdentifiersGetTheirFixedAnswers)
{
    Discover({});
    EXPECT_EQ(Manager().OpenCamera("Nobody(0)"), -1);
    EXPECT_EQ(Manager().CloseCamera("Nobody(0)"), -1);
    EXPECT_EQ(Manager().StartGrab("Nobody(0)"), -1);
    EXPECT_EQ(Manager().StopGrab("Nobody(0)"), -1);
    EXPECT_FALSE(Manager().IsGrabbing("Nobody(0)"));
    EXPECT_EQ(Manager().GetCameraInfo("Nobody(0)", ViewerBiz3::CAM_NAME), "");
    EXPECT_EQ(Manager().SetCameraInfo("Nobody(0)", ViewerBiz3::CAM_HOST_TEXT40, "x"), -1);
    std::string value;
    EXPECT_EQ(Manager().GetCameraNodeValue("Nobody(0)", "Width", value), -1);
    EXPECT_EQ(Manager().SetCameraNodeValue("Nobody(0)", "Width", "8"), -1);
    EXPECT_EQ(Manager().GetXML(ViewerBiz3::FOCUS_CAMERA, "Nobody(0)"), nullptr);
    EXPECT_EQ(Manager().GetNodeMap(ViewerBiz3::FOCUS_CARD, "Nobody(0)", ViewerBiz3::NODEMAP_MODULE2), nullptr);
    EXPECT_EQ(Manager().ModifyCameraId("Nobody(0)", "X"), -1);
    EXPECT_EQ(Manager().SetSLCameraShowMode("Nobody(0)", 1), -1);
    EXPECT_EQ(Manager().GetCameraImageMode("Nobody(0)"), -1);
    EXPECT_EQ(Manager().ModifyCameraIP("Nobody(0)", "169.254.1.1", "255.255.0.0", "0.0.0.0", false), -1);
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
}

TEST_F(DeviceManagerTest, CameraWithItsAdaptersAddressIsRefused)
{
    auto& device = AddGigECamera("C1", "Clash", "169.254.10.1", "02:00:00:00:00:01");
    Discover({"Clash(C1)"});
    CameraLogRecorder log;
    EXPECT_EQ(Manager().OpenCamera("Clash(C1)"), -10);
    EXPECT_EQ(log.Count(CONFLICT_LINE), 1u);
    EXPECT_TRUE(log.Contains("Error", CONFLICT_LINE));
    EXPECT_EQ(device.Counters().opens, 0u);
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
}

TEST_F(DeviceManagerTest, TwoCamerasWithOneAddressOnOneAdapterAreBothRefusedOncePerAttempt)
{
    auto& first = AddGigECamera("D1", "Twin", "169.254.10.50", "02:00:00:00:00:01");
    auto& second = AddGigECamera("D2", "Twin", "169.254.10.50", "02:00:00:00:00:02");
    Discover({"Twin(D1)", "Twin(D2)"});
    CameraLogRecorder log;
    EXPECT_EQ(Manager().OpenCamera("Twin(D1)"), -10);
    EXPECT_EQ(log.Count(CONFLICT_LINE), 1u);
    EXPECT_EQ(Manager().OpenCamera("Twin(D2)"), -10);
    EXPECT_EQ(Manager().OpenCamera("Twin(D2)"), -10);
    EXPECT_EQ(log.Count(CONFLICT_LINE), 3u);
    EXPECT_EQ(first.Counters().opens + second.Counters().opens, 0u);
}

TEST_F(DeviceManagerTest, OpenGrabStopCloseByKey)
{
    auto& device = AddGigECamera("A1", "Line3", "169.254.10.20", "02:00:00:00:00:01");
    Discover({"Line3(A1)"});
    bench.Events().Clear();
    ASSERT_EQ(Manager().OpenCamera("Line3(A1)"), 0);
    EXPECT_EQ(Manager().GetOpenedCameraIds(), std::vector<std::string>{"Line3(A1)"});
    Events events = bench.Events().Snapshot();
    ASSERT_FALSE(events.deviceLists.empty());
    EXPECT_EQ(events.deviceLists.front().kind, 1);
    EXPECT_EQ(events.deviceLists.front().first, std::vector<std::string>{DeviceTestBench::ADAPTER_KEY});
    EXPECT_EQ(events.deviceLists.front().second, std::vector<std::string>{"Line3(A1)"});
    EXPECT_EQ(Manager().GetCameraInfo("Line3(A1)", ViewerBiz3::CAM_OPENED), "1");
    EXPECT_EQ(Manager().OpenCamera("Line3(A1)"), -1) << "already open";

    ASSERT_EQ(Manager().StartGrab("Line3(A1)"), 0);
    EXPECT_TRUE(Manager().IsGrabbing("Line3(A1)"));
    EXPECT_TRUE(bench.Events().WaitUntil([](const Events& e) { return e.images >= 3; }));
    EXPECT_EQ(Manager().StopGrab("Line3(A1)"), 0);
    EXPECT_FALSE(Manager().IsGrabbing("Line3(A1)"));
    EXPECT_EQ(Manager().StopGrab("Line3(A1)"), -1) << "not grabbing";

    EXPECT_EQ(Manager().CloseCamera("Line3(A1)"), 0);
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
    EXPECT_EQ(Manager().CloseCamera("Line3(A1)"), -1) << "falls through to the Camera Link path";
    EXPECT_EQ(device.Counters().closes, 1u);
    EXPECT_EQ(Manager().GetCameraInfo("Line3(A1)", ViewerBiz3::CAM_NAME), "Line3(A1)") << "still listed";
}

TEST_F(DeviceManagerTest, FrameLimitFollowsTheAcquisitionMode)
{
    auto& device = AddGigECamera("M1", "Multi", "169.254.10.21", "02:00:00:00:00:01");
    device.SetFrameScript(Scripted::FrameScript::Empty().AddFrames(1, 2).Then(Scripted::WhenExhausted::KeepTimingOut));
    Discover({"Multi(M1)"});
    ASSERT_EQ(Manager().OpenCamera("Multi(M1)"), 0);
    auto startAndReadLimit = [&]() -> uint64_t {
        EXPECT_EQ(Manager().StartGrab("Multi(M1)"), 0);
        uint64_t limit = device.Counters().lastFrameLimit.value_or(0);
        Manager().StopGrab("Multi(M1)");
        return limit;
    };
    ASSERT_EQ(Manager().SetCameraNodeValue("Multi(M1)", "AcquisitionMode", "MultiFrame"), 0);
    ASSERT_EQ(Manager().SetCameraNodeValue("Multi(M1)", "AcquisitionFrameCount", "5"), 0);
    EXPECT_EQ(startAndReadLimit(), 5u);
    ASSERT_EQ(Manager().SetCameraNodeValue("Multi(M1)", "AcquisitionMode", "SingleFrame"), 0);
    EXPECT_EQ(startAndReadLimit(), 1u);
    ASSERT_EQ(Manager().SetCameraNodeValue("Multi(M1)", "AcquisitionMode", "Continuous"), 0);
    EXPECT_EQ(startAndReadLimit(), ZYLGENICAM::NO_FRAME_LIMIT);
}

TEST_F(DeviceManagerTest, FrameCountThatIsNoNumberMeansNoLimitAndIsLogged)
{
    Scripted::DeviceDescription description =
        DeviceScripted::GigECamera("S1", "Text", "169.254.10.22", "02:00:00:00:00:02");
    std::string& xml = description.moduleXml[3];
    std::size_t begin = xml.find("<Integer Name=\"AcquisitionFrameCount\"");
    ASSERT_NE(begin, std::string::npos);
    std::size_t end = xml.find("</Integer>", begin) + std::string("</Integer>").size();
    xml.replace(begin, end - begin, "<String Name=\"AcquisitionFrameCount\"><Value>Unlimited</Value></String>");
    auto& device = Scripted::ScriptedSdk::Instance().AddDevice(description);
    Discover({"Text(S1)"});
    ASSERT_EQ(Manager().OpenCamera("Text(S1)"), 0);
    ASSERT_EQ(Manager().SetCameraNodeValue("Text(S1)", "AcquisitionMode", "MultiFrame"), 0);
    CameraLogRecorder log;
    ASSERT_EQ(Manager().StartGrab("Text(S1)"), 0);
    EXPECT_EQ(device.Counters().lastFrameLimit, ZYLGENICAM::NO_FRAME_LIMIT);
    EXPECT_EQ(log.Count("AcquisitionFrameCount \"Unlimited\" is no number"), 1u);
    Manager().StopGrab("Text(S1)");
}

TEST_F(DeviceManagerTest, FocusEndsFalseOnTheNewHolderAndIsAnnouncedOnce)
{
    AddGigECamera("A1", "Left", "169.254.10.20", "02:00:00:00:00:01");
    Discover({"Left(A1)"});
    bench.Events().Clear();
    EXPECT_EQ(Manager().SetFocus(ViewerBiz3::FOCUS_CAMERA, "Left(A1)"), 0);
    EXPECT_EQ(Manager().GetCameraInfo("Left(A1)", ViewerBiz3::CAM_FLAG3), "0");
    EXPECT_EQ(Manager().SetFocus(ViewerBiz3::FOCUS_CARD, DeviceTestBench::ADAPTER_KEY), 0);
    EXPECT_EQ(Manager().GetCardInfo(DeviceTestBench::ADAPTER_KEY, ViewerBiz3::CARD_FLAG2), "0");
    EXPECT_EQ(Manager().SetFocus(static_cast<ViewerBiz3::FOCUS_TYPE>(4), "Left(A1)"), -1);
    Events events = bench.Events().Snapshot();
    ASSERT_EQ(events.focus.size(), 2u);
    EXPECT_EQ(events.focus[0].first, "1");
    EXPECT_EQ(events.focus[0].second, "Left(A1)");
    EXPECT_EQ(events.focus[1].second, DeviceTestBench::ADAPTER_KEY);
}

TEST_F(DeviceManagerTest, RenamedCameraIsFoundByOldKeyAndNewName)
{
    AddGigECamera("S1", "A", "169.254.10.20", "02:00:00:00:00:01");
    Discover({"A(S1)"});
    ASSERT_EQ(Manager().OpenCamera("A(S1)"), 0);
    ASSERT_EQ(Manager().ModifyCameraId("A(S1)", "B"), 0);
    Events events = bench.Events().Snapshot();
    ASSERT_EQ(events.cameraIds.size(), 1u);
    EXPECT_EQ(events.cameraIds[0].first, "A(S1)");
    EXPECT_EQ(events.cameraIds[0].second, "B(S1)");
    std::string userId;
    EXPECT_EQ(Manager().GetCameraNodeValue("A(S1)", "DeviceUserID", userId), 0);
    EXPECT_EQ(userId, "B");
    EXPECT_EQ(Manager().GetCameraInfo("A(S1)", ViewerBiz3::CAM_NAME), "B(S1)");
    EXPECT_EQ(Manager().StartGrab("B(S1)"), 0) << "the new name reaches the camera";
    EXPECT_EQ(Manager().StopGrab("A(S1)"), 0);
    EXPECT_EQ(Manager().GetOpenedCameraIds(), std::vector<std::string>{"A(S1)"}) << "map keys unchanged";
    EXPECT_EQ(Manager().CloseCamera("B(S1)"), 0);
}

TEST_F(DeviceManagerTest, ShowModeAnswersMinusTwoEvenAfterAChange)
{
    Scripted::DeviceDescription showMode =
        DeviceScripted::GigECamera("Q1", "Show", "169.254.10.30", "02:00:00:00:00:03");
    showMode.identity.modelName = "QV-RM100";
    Scripted::ScriptedSdk::Instance().AddDevice(showMode);
    AddGigECamera("A1", "Plain", "169.254.10.20", "02:00:00:00:00:01");
    Discover({"Show(Q1)", "Plain(A1)"});
    EXPECT_EQ(Manager().GetCameraInfo("Show(Q1)", ViewerBiz3::CAM_KIND), "5");
    EXPECT_EQ(Manager().SetSLCameraShowMode("Show(Q1)", 2), -2);
    EXPECT_EQ(Manager().GetSLCameraShowMode("Show(Q1)"), 2);
    Events events = bench.Events().Snapshot();
    ASSERT_EQ(events.showModes.size(), 1u);
    EXPECT_EQ(events.showModes[0].first, "Show(Q1)");
    EXPECT_EQ(events.showModes[0].second, "2");
    EXPECT_EQ(Manager().SetSLCameraShowMode("Plain(A1)", 2), -2);
    EXPECT_EQ(Manager().GetSLCameraShowMode("Plain(A1)"), -2);
    EXPECT_EQ(bench.Events().Snapshot().showModes.size(), 1u) << "no notification for a plain camera";
}

TEST_F(DeviceManagerTest, ImageModeThreeIsAnnouncedWithoutTouchingTheCamera)
{
    Scripted::DeviceDescription profile = Scripted::ProfileCamera("F100", "Profile", ZYLGENICAM::TL_GIGE);
    profile.identity.ip = "169.254.10.40";
    profile.identity.mac = "02:00:00:00:00:04";
    Scripted::ScriptedSdk::Instance().AddDevice(profile);
    AddGigECamera("A1", "Plain", "169.254.10.20", "02:00:00:00:00:01");
    Discover({"Profile(F100)", "Plain(A1)"});
    EXPECT_EQ(Manager().GetCameraInfo("Profile(F100)", ViewerBiz3::CAM_KIND), "1");
    EXPECT_EQ(Manager().SetCameraImageMode("Profile(F100)", 3, false), -1) << "not open";
    ASSERT_EQ(Manager().OpenCamera("Profile(F100)"), 0);
    ASSERT_EQ(Manager().OpenCamera("Plain(A1)"), 0);
    int modeBefore = Manager().GetCameraImageMode("Profile(F100)");
    bench.Events().Clear();
    EXPECT_EQ(Manager().SetCameraImageMode("Profile(F100)", 3, false), 0);
    Events events = bench.Events().Snapshot();
    ASSERT_EQ(events.imageModes.size(), 1u);
    EXPECT_EQ(events.imageModes[0].first, "Profile(F100)");
    EXPECT_EQ(events.imageModes[0].second, "3");
    EXPECT_EQ(Manager().GetCameraImageMode("Profile(F100)"), modeBefore);
    EXPECT_EQ(Manager().SetCameraImageMode("Plain(A1)", 3, true), -2);
    EXPECT_EQ(Manager().GetCameraImageMode("Plain(A1)"), -2);
}

TEST_F(DeviceManagerTest, NothingIsAnnouncedWhileTheManagerShutsDown)
{
    auto& device = AddGigECamera("A1", "Busy", "169.254.10.20", "02:00:00:00:00:01");
    device.SetFrameScript(Scripted::FrameScript::Empty().AddFrames(1, 3).Then(Scripted::WhenExhausted::KeepTimingOut));
    Discover({"Busy(A1)"});
    ASSERT_EQ(Manager().OpenCamera("Busy(A1)"), 0);
    ASSERT_EQ(Manager().StartGrab("Busy(A1)"), 0);
    ASSERT_TRUE(device.WaitUntil([](const Scripted::DeviceCounters& c) { return c.imagesReleased == 3; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    bench.Events().Clear();
    bench.ReleaseManager();
    Events events = bench.Events().Snapshot();
    // Statistics may still come while the background threads are being stopped, before
    // notifications are switched off; the closing itself must stay silent.
    EXPECT_TRUE(events.deviceLists.empty()) << "closing a camera normally announces it";
    EXPECT_EQ(events.images, 0u) << "not even the empty frame a stop sends";
    EXPECT_TRUE(events.focus.empty());
    EXPECT_EQ(device.Counters().closes, 1u) << "the camera was closed all the same";
    EXPECT_EQ(device.Counters().ImagesOutstanding(), 0u);
}

TEST_F(DeviceManagerTest, ManyHostThreadsOnSeveralCamerasNeverDeadlock)
{
    const int cameraCount = 4;
    std::vector<std::string> ids;
    for (int index = 0; index < cameraCount; ++index) {
        std::string serial = "T" + std::to_string(index);
        AddGigECamera(serial, "Worker", "169.254.10." + std::to_string(60 + index),
                      "02:00:00:00:01:0" + std::to_string(index));
        ids.push_back("Worker(" + serial + ")");
    }
    Discover(ids);
    std::atomic<bool> stopReading{false};
    auto cycle = [this](const std::string& id) {
        int opened = 0;
        for (int round = 0; round < 5; ++round) {
            if (Manager().OpenCamera(id) != 0)
                continue;
            ++opened;
            Manager().StartGrab(id);
            std::string value;
            Manager().GetCameraNodeValue(id, "Width", value);
            Manager().GetCameraInfo(id, ViewerBiz3::CAM_FRAME_COUNT);
            Manager().StopGrab(id);
            Manager().CloseCamera(id);
        }
        return opened;
    };
    auto reader = [this, &ids, &stopReading] {
        while (!stopReading.load()) {
            for (const std::string& id : ids) {
                Manager().GetCameraInfo(id, ViewerBiz3::CAM_NAME);
                Manager().IsGrabbing(id);
            }
            Manager().GetOpenedCameraIds();
            Manager().RefreshDeviceList(1);
        }
        return true;
    };
    std::vector<std::future<int>> workers;
    for (const std::string& id : ids)
        workers.push_back(std::async(std::launch::async, cycle, id));
    auto reading = std::async(std::launch::async, reader);
    int opened = 0;
    for (auto& worker : workers) {
        ASSERT_EQ(worker.wait_for(std::chrono::seconds(90)), std::future_status::ready) << "a host thread hangs";
        opened += worker.get();
    }
    EXPECT_GT(opened, cameraCount) << "the cameras were really opened, again and again";
    stopReading.store(true);
    ASSERT_EQ(reading.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
    EXPECT_EQ(Scripted::ScriptedSdk::Instance().Counters().misuses, 0u);
}

TEST_F(DeviceManagerTest, LostCameraLeavesBothListsAndItsObjectIsFreedByTheNextPass)
{
    auto& device = AddGigECamera("L1", "Lost", "169.254.10.20", "02:00:00:00:00:01");
    Discover({"Lost(L1)"});
    ASSERT_EQ(Manager().OpenCamera("Lost(L1)"), 0);
    ASSERT_EQ(Manager().StartGrab("Lost(L1)"), 0);
    device.Lose();
    EXPECT_TRUE(WaitUntil([this] { return Manager().GetOpenedCameraIds().empty(); }));
    EXPECT_TRUE(WaitUntil([this] { return Manager().GetCameraInfo("Lost(L1)", ViewerBiz3::CAM_NAME).empty(); }));
    device.SetPresent(false);
    Discover({});
    EXPECT_TRUE(device.WaitUntil([](const Scripted::DeviceCounters& c) {
        return c.camerasCreated == c.camerasDestroyed;
    })) << "the lost camera's object gives its handle back once the pass has run";
    EXPECT_EQ(device.Counters().ImagesOutstanding(), 0u);
}

TEST_F(DeviceManagerTest, AddressChangeIsRefusedWhileOpenAndRefreshesTheListOtherwise)
{
    auto& device = AddGigECamera("P1", "Addr", "169.254.10.20", "02:00:00:00:00:01");
    Discover({"Addr(P1)"});
    ASSERT_EQ(Manager().OpenCamera("Addr(P1)"), 0);
    EXPECT_EQ(Manager().ModifyCameraIP("Addr(P1)", "169.254.10.99", "255.255.0.0", "0.0.0.0", true), -1);
    EXPECT_TRUE(device.Counters().cameraIPCalls.empty());
    ASSERT_EQ(Manager().CloseCamera("Addr(P1)"), 0);
    ASSERT_TRUE(bench.RunPass());
    std::size_t lists = bench.Events().Snapshot().WholeLists();
    EXPECT_EQ(Manager().ModifyCameraIP("Addr(P1)", "169.254.10.99", "255.255.0.0", "0.0.0.0", true), 0);
    ASSERT_EQ(device.Counters().cameraIPCalls.size(), 1u);
    EXPECT_EQ(device.Counters().cameraIPCalls[0].ip, "169.254.10.99");
    EXPECT_TRUE(device.Counters().cameraIPCalls[0].persistent);
    ASSERT_TRUE(bench.WaitForPasses(lists + 1)) << "the change asks for a GigE refresh";
    // A pass that searched before the change may come first; the requested one follows.
    EXPECT_TRUE(
        WaitUntil([this] { return Manager().GetCameraInfo("Addr(P1)", ViewerBiz3::CAM_IP) == "169.254.10.99"; }));
}
