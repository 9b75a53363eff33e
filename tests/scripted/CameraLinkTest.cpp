// Camera Link as the host drives it: cards and the cameras behind them, found
// by the Camera Link refresh, opened, bound to a protocol and serial port,
// unbound and closed; serial-only cameras; placeholders of lost cameras.
#include <gtest/gtest.h>

#include <thread>

#include "camera/CLCamera.h"
#include "device/Card.h"
#include "device/DeviceManager.h"
#include "support/common/CameraHandles.h"
#include "support/common/DeviceScriptedDevices.h"
#include "support/common/DeviceTestBench.h"
#include "support/common/ScriptedDeviceManagerTest.h"

using Events = DeviceEventRecorder::Events;
using Scripted::ScriptedSdk;

namespace {

const char* const CAMERA_ID = "Scripted-CL(C1)";

class CameraLinkTest : public ScriptedDeviceManagerTest {
protected:
    // The card "card0" with the camera C1 behind it, listed by a Camera Link refresh.
    Scripted::ScriptedDevice& ListCardAndCamera(const std::string& protocol = "", const std::string& port = "")
    {
        ScriptedSdk::Instance().AddDevice(Scripted::FrameGrabberCard("card0"));
        auto& camera = ScriptedSdk::Instance().AddDevice(Scripted::CameraLinkCamera("C1", "card0", protocol, port));
        RefreshCameraLink();
        return camera;
    }

    void RefreshCameraLink()
    {
        std::size_t lists = bench.Events().Snapshot().WholeLists();
        Manager().RefreshDeviceList(ZYLGENICAM::TL_CAMERALINK);
        ASSERT_TRUE(bench.WaitForPasses(lists + 1));
    }
};

} // namespace

TEST_F(CameraLinkTest, RefreshListsCardsAndCamerasBesideTheDeviceList)
{
    ScriptedSdk::Instance().AddDevice(Scripted::CameraLinkCamera("G1", CLCamera::SERIAL_ONLY_LIST_KEY));
    ListCardAndCamera();
    DeviceEventRecorder::DeviceList list = bench.Events().Snapshot().LastWholeList();
    EXPECT_EQ(list.first, std::vector<std::string>{"card0"});
    EXPECT_TRUE(Contains(list.second, CAMERA_ID));
    EXPECT_TRUE(Contains(list.second, "Scripted-CL(G1)"));
    EXPECT_EQ(Manager().GetCameraInfo(CAMERA_ID, ViewerBiz3::CAM_KIND), "4");
    EXPECT_EQ(Manager().GetCameraInfo(CAMERA_ID, ViewerBiz3::CAM_NAME), CAMERA_ID);
    EXPECT_EQ(Manager().GetCameraInfo(CAMERA_ID, ViewerBiz3::CAM_LIST_KEY), "card0");
    EXPECT_EQ(Manager().GetCameraInfo("Scripted-CL(G1)", ViewerBiz3::CAM_LIST_KEY), "GenCPCamera");
    EXPECT_EQ(Manager().GetCardInfo("card0", ViewerBiz3::CARD_OPENED), "0");
    EXPECT_EQ(Manager().GetCardInfo("card0", Card::CAMERA_NAME_TEXT), CAMERA_ID);
    std::size_t lists = bench.Events().Snapshot().WholeLists();
    Manager().RefreshDeviceList(ZYLGENICAM::TL_CAMERALINK);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(bench.Events().Snapshot().WholeLists(), lists) << "a refresh that finds nothing new stays silent";
}

TEST_F(CameraLinkTest, OpenCardThenBindCameraThenUnbindAndClose)
{
    auto& camera = ListCardAndCamera();
    bench.Events().Clear();
    EXPECT_EQ(Manager().OpenCard("nocard"), -1);
    EXPECT_TRUE(bench.Events().Snapshot().deviceLists.empty()) << "an unknown card sends nothing";
    ASSERT_EQ(Manager().OpenCard("card0"), 0);
    EXPECT_EQ(Manager().GetOpenedCardIds(), std::vector<std::string>{"card0"});
    EXPECT_EQ(Manager().GetCardInfo("card0", ViewerBiz3::CARD_OPENED), "1");
    Events events = bench.Events().Snapshot();
    ASSERT_EQ(events.deviceLists.size(), 1u);
    EXPECT_EQ(events.deviceLists[0].first, std::vector<std::string>{"card0"});
    EXPECT_EQ(events.deviceLists[0].second, std::vector<std::string>{""});

    ASSERT_EQ(Manager().OpenCLCamera(CAMERA_ID, "CameraLink", "COM1"), 0);
    ASSERT_EQ(camera.Counters().clProtocolCalls.size(), 1u);
    EXPECT_EQ(camera.Counters().clProtocolCalls[0].protocol, "CameraLink");
    EXPECT_EQ(camera.Counters().clProtocolCalls[0].serialPort, "COM1");
    EXPECT_EQ(Manager().GetOpenedCameraIds(), std::vector<std::string>{CAMERA_ID});
    EXPECT_EQ(Manager().GetCameraInfo(CAMERA_ID, ViewerBiz3::CAM_OPENED), "1");
    std::string width;
    EXPECT_EQ(Manager().GetCameraNodeValue(CAMERA_ID, "Width", width), 0);
    EXPECT_EQ(width, "640");

    EXPECT_EQ(Manager().CloseCLCamera(CAMERA_ID), 0);
    ASSERT_EQ(camera.Counters().clProtocolCalls.size(), 2u);
    EXPECT_TRUE(camera.Counters().clProtocolCalls[1].unbind);
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
    EXPECT_EQ(Manager().CloseCard("card0"), 0);
    EXPECT_TRUE(Manager().GetOpenedCardIds().empty());
    EXPECT_EQ(Manager().CloseCard("card0"), -1) << "not opened";
    EXPECT_EQ(Manager().CloseCLCamera("Nobody(0)"), -1);
}

TEST_F(CameraLinkTest, OpeningACameraOpensItsCardFirst)
{
    auto& camera = ListCardAndCamera();
    ASSERT_EQ(Manager().OpenCLCamera(CAMERA_ID, "CameraLink", "COM1"), 0);
    EXPECT_EQ(Manager().GetOpenedCardIds(), std::vector<std::string>{"card0"});
    EXPECT_EQ(camera.Counters().opens, 1u);
    EXPECT_EQ(Manager().CloseCard("card0"), 0) << "closing the card unbinds its camera first";
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
    EXPECT_EQ(camera.Counters().closes, 1u);
}

TEST_F(CameraLinkTest, ACameraThatCannotBeBoundLeavesItsCardOpenAndIsShownClosed)
{
    auto& camera = ListCardAndCamera();
    camera.SetResult(Scripted::SdkCall::SetCLProtocol, -1);
    bench.Events().Clear();
    EXPECT_NE(Manager().OpenCLCamera(CAMERA_ID, "CameraLink", "COM1"), 0);
    EXPECT_EQ(Manager().GetOpenedCardIds(), std::vector<std::string>{"card0"});
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
    const Events events = bench.Events().Snapshot();
    ASSERT_FALSE(events.deviceLists.empty());
    EXPECT_EQ(events.deviceLists.back().second, std::vector<std::string>{CAMERA_ID});
}

TEST_F(CameraLinkTest, CardNodesAreReachedThroughTheOpenedCard)
{
    ListCardAndCamera();
    std::string value;
    EXPECT_EQ(Manager().GetCardNodeValue("card0", "SerialBaudRate", value), -1) << "card not opened";
    ASSERT_EQ(Manager().OpenCLCamera(CAMERA_ID, "CameraLink", "COM1"), 0);
    EXPECT_EQ(Manager().GetCardNodeValue("card0", "SerialBaudRate", value), 0);
    EXPECT_EQ(value, "9600");
    EXPECT_EQ(Manager().SetCardNodeValue("card0", "SerialBaudRate", "115200"), 0);
    EXPECT_EQ(Manager().GetCardNodeValue("card0", "SerialBaudRate", value), 0);
    EXPECT_EQ(value, "115200");
    EXPECT_NE(Manager().GetXML(ViewerBiz3::FOCUS_CARD, "card0"), nullptr);
    EXPECT_NE(Manager().GetNodeMap(ViewerBiz3::FOCUS_CARD, "card0", ViewerBiz3::NODEMAP_MODULE0), nullptr);
    EXPECT_EQ(Manager().GetXML(ViewerBiz3::FOCUS_CARD, "nocard"), nullptr);
}

TEST_F(CameraLinkTest, EmptyProtocolLeavesTheCameraClosed)
{
    ListCardAndCamera();
    ASSERT_EQ(Manager().OpenCLCamera(CAMERA_ID, "CameraLink", "COM1"), 0);
    EXPECT_EQ(Manager().OpenCLCamera(CAMERA_ID, "", "COM1"), 0);
    EXPECT_EQ(Manager().GetCameraInfo(CAMERA_ID, ViewerBiz3::CAM_OPENED), "0");
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
    EXPECT_EQ(Manager().OpenCLCamera("Nobody(0)", "CameraLink", "COM1"), -1);
}

TEST_F(CameraLinkTest, StoredProtocolAndPortWinOverTheHostsChoice)
{
    auto& camera = ListCardAndCamera("CL-Base", "COM3");
    ASSERT_EQ(Manager().OpenCLCamera(CAMERA_ID, "CL-Full", "COM9"), 0);
    ASSERT_EQ(camera.Counters().clProtocolCalls.size(), 1u);
    EXPECT_EQ(camera.Counters().clProtocolCalls[0].protocol, "CL-Base");
    EXPECT_EQ(camera.Counters().clProtocolCalls[0].serialPort, "COM3");
}

TEST_F(CameraLinkTest, SerialOnlyCameraOpensWithoutACard)
{
    auto& camera = ScriptedSdk::Instance().AddDevice(Scripted::CameraLinkCamera("G1", CLCamera::SERIAL_ONLY_LIST_KEY));
    RefreshCameraLink();
    ASSERT_EQ(Manager().OpenCLCamera("Scripted-CL(G1)", "GenCP", "COM2"), 0);
    EXPECT_EQ(camera.Counters().opens, 0u);
    EXPECT_EQ(Manager().GetOpenedCameraIds(), std::vector<std::string>{"Scripted-CL(G1)"});
    EXPECT_EQ(Manager().CloseCamera("Scripted-CL(G1)"), 0) << "falls through to the Camera Link path";
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
}

TEST_F(CameraLinkTest, PlaceholderOfALostCameraBindsWithoutTheSdk)
{
    auto& device = ScriptedSdk::Instance().AddDevice(Scripted::CameraLinkCamera("C9", "card9"));
    ZYLGENICAM::ICamera* handle = CreateCameraHandle(ZYLGENICAM::TL_CAMERALINK, "C9");
    ASSERT_NE(handle, nullptr);
    ASSERT_EQ(handle->Open(1), 0); // its card side stays open
    auto* placeholder = new CLCamera(handle);
    placeholder->SetName("Virtual camera-C9");
    placeholder->SetKey("Virtual camera-C9");
    placeholder->SetListKey("card9");
    placeholder->SetKind(4);
    Manager().AddCLCamera(placeholder); // as the watchdog hands a lost camera back
    EXPECT_EQ(Manager().GetCameraInfo("Virtual camera-C9", ViewerBiz3::CAM_LIST_KEY), "card9");
    ASSERT_EQ(Manager().OpenCLCamera("Virtual camera-C9", "CameraLink", "COM1"), 0);
    EXPECT_TRUE(device.Counters().clProtocolCalls.empty());
    EXPECT_EQ(Manager().GetCameraInfo("Virtual camera-C9", ViewerBiz3::CAM_OPENED), "1");
    std::string value;
    EXPECT_EQ(Manager().GetCameraNodeValue("Virtual camera-C9", "Width", value), -1);
    EXPECT_EQ(Manager().CloseCLCamera("Virtual camera-C9"), 0);
    EXPECT_TRUE(device.Counters().clProtocolCalls.empty());
}

TEST_F(CameraLinkTest, ProtocolsAndSerialsComeFromTheSdk)
{
    ScriptedSdk::Instance().SetCLProtocols({"CameraLink", "GenCP"});
    ScriptedSdk::Instance().SetCLSerials({"COM1"});
    std::list<std::string> protocols{"stale"};
    std::list<std::string> serials;
    EXPECT_EQ(Manager().GetCLProtocolsAndSerials(protocols, serials), 0);
    EXPECT_EQ(protocols, (std::list<std::string>{"CameraLink", "GenCP"}));
    EXPECT_EQ(serials, (std::list<std::string>{"COM1"}));
}
