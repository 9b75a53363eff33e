// Discovery passes on scripted devices: what the host is told, how cameras are
// named, classed and attached to adapters, how opened devices are recognised
// and renamed, and how refresh requests drive the one discovery thread.
#include <gtest/gtest.h>

#include <algorithm>

#include "device/DeviceManager.h"
#include "support/common/DeviceScriptedDevices.h"
#include "support/common/ScriptedDeviceManagerTest.h"
#include "support/common/WaitUntil.h"

using DeviceScripted::AddGigECamera;
using DeviceScripted::AddUsbCamera;
using Scripted::ScriptedSdk;

namespace {

class DiscoveryTest : public ScriptedDeviceManagerTest {
protected:
    DeviceEventRecorder::DeviceList Pass()
    {
        EXPECT_TRUE(bench.RunPass());
        return bench.Events().Snapshot().LastWholeList();
    }
    std::string Info(const std::string& id, ViewerBiz3::CAM_INFO info) { return Manager().GetCameraInfo(id, info); }
    static std::vector<std::string> Sorted(std::vector<std::string> texts)
    {
        std::sort(texts.begin(), texts.end());
        return texts;
    }
};

} // namespace

// One pass lists GigE cameras under the adapter of their subnet (unavailable when outside
// it), USB cameras under "usbCard" and simulated ones under none, each of the class its
// serial number or model name calls for, and each under one name.
TEST_F(DiscoveryTest, PassListsDevicesUnderTheirAdaptersAndInTheirClass)
{
    auto& gige = AddGigECamera("A1", "Line3", "169.254.10.20", "02:00:00:00:00:01");
    AddGigECamera("X1", "Far", "192.168.5.5", "02:00:00:00:00:02")
        .UpdateIdentity([](Scripted::DeviceIdentity& identity) { identity.mask = "255.255.255.0"; });
    auto& usb = AddUsbCamera("FU", "Usb1");
    ScriptedSdk::Instance().AddDevice(Scripted::ProfileCamera("F7", "Prof", ZYLGENICAM::TL_SIMULATED));
    Scripted::DeviceDescription showMode = Scripted::AreaCamera("Q7", "Show", ZYLGENICAM::TL_SIMULATED);
    showMode.identity.modelName = "XQV-RM200";
    ScriptedSdk::Instance().AddDevice(showMode);
    Scripted::DeviceDescription both = Scripted::AreaCamera("FQ", "Both", ZYLGENICAM::TL_SIMULATED);
    both.identity.modelName = "QV-RM1";
    ScriptedSdk::Instance().AddDevice(both);
    ScriptedSdk::Instance().AddDevice(Scripted::CameraLinkCamera("C1", "card0"));
    AddGigECamera("L1", "AVeryLongUserDefinedCameraName", "169.254.10.21", "02:00:00:00:00:03");
    AddGigECamera("N1", "", "169.254.10.22", "02:00:00:00:00:04");
    Scripted::DeviceDescription first = Scripted::AreaCamera("D1", "Dup", ZYLGENICAM::TL_SIMULATED);
    first.identity.modelName = "First-Model";
    Scripted::DeviceDescription second = first;
    second.identity.modelName = "Second-Model";
    ScriptedSdk::Instance().AddDevice(first);
    auto& duplicate = ScriptedSdk::Instance().AddDevice(second);
    DeviceEventRecorder::DeviceList list = Pass();

    EXPECT_EQ(Sorted(list.first), (std::vector<std::string>{"usbCard", DeviceTestBench::ADAPTER_KEY}));
    EXPECT_EQ(Sorted(list.second),
              (std::vector<std::string>{"AVeryLongUserDefinedCameraName(L1)", "Both(FQ)", "Dup(D1)", "Far(X1)",
                                        "Line3(A1)", "Prof(F7)", "Scripted-Area(N1)", "Show(Q7)", "Usb1(FU)"}))
        << "long names kept, the model name without one, two alike once; Camera Link is not searched";
    const std::vector<std::vector<std::string>> infos = {
        // id, list key, kind, same segment, available
        {"Line3(A1)", DeviceTestBench::ADAPTER_KEY, "0", "1", "1"},
        {"Far(X1)", DeviceTestBench::ADAPTER_KEY, "0", "0", "0"},
        {"Usb1(FU)", "usbCard", "3", "1", "1"}, // a profile serial, but USB
        {"Prof(F7)", "", "1", "0", "1"},
        {"Show(Q7)", "", "5", "0", "1"},
        {"Both(FQ)", "", "1", "0", "1"}, // the serial is tested first
    };
    for (const std::vector<std::string>& info : infos) {
        EXPECT_EQ(Info(info[0], ViewerBiz3::CAM_LIST_KEY), info[1]) << info[0];
        EXPECT_EQ(Info(info[0], ViewerBiz3::CAM_KIND), info[2]) << info[0];
        EXPECT_EQ(Info(info[0], ViewerBiz3::CAM_SAME_SEGMENT), info[3]) << info[0];
        EXPECT_EQ(Info(info[0], ViewerBiz3::CAM_AVAILABLE), info[4]) << info[0];
    }
    EXPECT_EQ(Info("Line3(A1)", ViewerBiz3::CAM_IP), "169.254.10.20");
    EXPECT_EQ(Manager().GetCardInfo(DeviceTestBench::ADAPTER_KEY, ViewerBiz3::CARD_IN_USE), "4") << "cameras on it";
    EXPECT_EQ(Manager().GetCardInfo("usbCard", ViewerBiz3::CARD_TYPE), "2");
    EXPECT_EQ(gige.Counters().recordsCreated, gige.Counters().recordsDestroyed);
    EXPECT_EQ(usb.Counters().recordsCreated, usb.Counters().recordsDestroyed);
    EXPECT_EQ(Info("Dup(D1)", ViewerBiz3::CAM_MODEL_NAME), "First-Model") << "the first one found wins";
    EXPECT_EQ(duplicate.Counters().camerasCreated, duplicate.Counters().camerasDestroyed)
        << "the dropped duplicate's handle is given back";
}

TEST_F(DiscoveryTest, AdaptersWithoutCamerasAreLeftOut)
{
    auto& usb = AddUsbCamera("U1", "Usb1");
    DeviceEventRecorder::DeviceList list = Pass();
    EXPECT_EQ(list.first, std::vector<std::string>{"usbCard"}) << "the namespace adapter carries no camera";
    usb.SetPresent(false);
    list = Pass();
    EXPECT_TRUE(list.first.empty());
    EXPECT_TRUE(list.second.empty());
    EXPECT_EQ(Manager().GetCardInfo("usbCard", ViewerBiz3::CARD_KEY), "");
}

// A pass that finds an opened camera renamed announces it once; a GigE camera keeps the key
// it was opened with, a USB camera is re-keyed and still found when lost.
TEST_F(DiscoveryTest, RenamedOpenedCamerasAreAnnouncedOnce)
{
    auto& gige = AddGigECamera("G1", "Old", "169.254.10.20", "02:00:00:00:00:01");
    auto& usb = AddUsbCamera("U1", "Old");
    Pass();
    ASSERT_EQ(Manager().OpenCamera("Old(G1)"), 0);
    ASSERT_EQ(Manager().OpenCamera("Old(U1)"), 0);
    uint64_t handles = gige.Counters().camerasCreated;
    for (Scripted::ScriptedDevice* device : {&gige, &usb})
        device->UpdateIdentity([](Scripted::DeviceIdentity& identity) { identity.userDefinedName = "New"; });
    bench.Events().Clear();
    // The list of the pass that saw the renames was copied before them; the next one has the new USB key.
    EXPECT_EQ(Sorted(Pass().second), (std::vector<std::string>{"Old(G1)", "Old(U1)"}));
    EXPECT_EQ(Sorted(Pass().second), (std::vector<std::string>{"New(U1)", "Old(G1)"}));
    EXPECT_EQ(Sorted(bench.Events().Snapshot().cameraIds),
              (std::vector<std::string>{"Old(G1)=New(G1)", "Old(U1)=New(U1)"}));
    EXPECT_EQ(Sorted(Manager().GetOpenedCameraIds()), (std::vector<std::string>{"New(U1)", "Old(G1)"}));
    EXPECT_EQ(Info("New(G1)", ViewerBiz3::CAM_NAME), "New(G1)");
    EXPECT_EQ(gige.Counters().camerasCreated, handles) << "the opened object is reused, not recreated";

    usb.Lose();
    EXPECT_TRUE(WaitUntil([this] { return Manager().GetOpenedCameraIds() == std::vector<std::string>{"Old(G1)"}; }))
        << "the lost camera is found though it reports the key it was opened with";
    EXPECT_EQ(Info("New(U1)", ViewerBiz3::CAM_NAME), "");
}

// One discovery thread: requests during a pass leave one wake-up behind, and the wake-up
// after a camera was closed runs two passes.
TEST_F(DiscoveryTest, RefreshRequestsShareTheOneDiscoveryThread)
{
    AddGigECamera("A1", "Cam", "169.254.10.20", "02:00:00:00:00:01");
    ScriptedSdk::Instance().SetDiscoveryDelay(std::chrono::milliseconds(300));
    for (int request = 0; request < 3; ++request)
        EXPECT_EQ(Manager().RefreshDeviceList(1), 0);
    ASSERT_TRUE(bench.WaitForPasses(2));
    ScriptedSdk::Instance().SetDiscoveryDelay(std::chrono::milliseconds(0));
    ASSERT_EQ(Manager().OpenCamera("Cam(A1)"), 0);
    ASSERT_TRUE(bench.RunPass()) << "a pass keeps the opened camera";
    ASSERT_EQ(Manager().CloseCamera("Cam(A1)"), 0);
    Manager().RefreshDeviceList(1);
    ASSERT_TRUE(bench.WaitForPasses(5));
    EXPECT_FALSE(
        WaitUntil([] { return ScriptedSdk::Instance().Counters().discoveries > 5; }, std::chrono::milliseconds(500)))
        << "no further pass follows";
    EXPECT_EQ(bench.Events().Snapshot().WholeLists(), 5u);
}

TEST_F(DiscoveryTest, TypesSearchedAreThoseOfTheStoredMask)
{
    AddGigECamera("A1", "Cam", "169.254.10.20", "02:00:00:00:00:01");
    AddUsbCamera("U1", "Usb");
    Manager().RefreshDeviceList(ZYLGENICAM::TL_CAMERALINK);
    Manager().RefreshDeviceList(0x8000);
    Manager().SetTLTypeList(ZYLGENICAM::TL_USB);
    EXPECT_EQ(Pass().second, std::vector<std::string>{"Usb(U1)"});
    EXPECT_EQ(ScriptedSdk::Instance().Counters().discoveries, 1u) << "a Camera Link refresh alone searches nothing";
    EXPECT_EQ(bench.Events().Snapshot().WholeLists(), 1u);
}
