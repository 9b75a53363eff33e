// Camera Link as the host drives it: cards and the cameras behind them, found
// by the Camera Link refresh, opened, bound to a protocol and serial port,
// unbound and closed; serial-only cameras.
#include <gtest/gtest.h>

#include "camera/CLCamera.h"
#include "device/Card.h"
#include "device/DeviceManager.h"
#include "support/common/DeviceScriptedDevices.h"
#include "support/common/DeviceTestBench.h"
#include "support/common/ScriptedDeviceManagerTest.h"

using Scripted::ScriptedSdk;

namespace {

const char* const CAMERA_ID = "Scripted-CL(C1)";
const char* const SERIAL_ONLY_ID = "Scripted-CL(G1)";

class CameraLinkTest : public ScriptedDeviceManagerTest {
protected:
    // The card "card0" with the camera C1 behind it and the serial-only camera G1, listed by a
    // Camera Link refresh.
    Scripted::ScriptedDevice& ListCameras(const std::string& protocol = "", const std::string& port = "")
    {
        ScriptedSdk::Instance().AddDevice(Scripted::FrameGrabberCard("card0"));
        auto& camera = ScriptedSdk::Instance().AddDevice(Scripted::CameraLinkCamera("C1", "card0", protocol, port));
        ScriptedSdk::Instance().AddDevice(Scripted::CameraLinkCamera("G1", CLCamera::SERIAL_ONLY_LIST_KEY));
        const std::size_t lists = bench.Events().Snapshot().WholeLists();
        Manager().RefreshDeviceList(ZYLGENICAM::TL_CAMERALINK);
        EXPECT_TRUE(bench.WaitForPasses(lists + 1));
        return camera;
    }
};

} // namespace

// The protocol and port stored with the camera win over the host's choice; a serial-only camera
// opens without a card.
TEST_F(CameraLinkTest, RefreshListsTheCardThenTheHostOpensItBindsItsCameraAndClosesBoth)
{
    auto& camera = ListCameras("CL-Base", "COM3");
    DeviceEventRecorder::DeviceList list = bench.Events().Snapshot().LastWholeList();
    EXPECT_EQ(list.first, std::vector<std::string>{"card0"});
    EXPECT_TRUE(Contains(list.second, CAMERA_ID));
    EXPECT_TRUE(Contains(list.second, SERIAL_ONLY_ID));
    EXPECT_EQ(Manager().GetCameraInfo(CAMERA_ID, ViewerBiz3::CAM_LIST_KEY), "card0");
    EXPECT_EQ(Manager().GetCardInfo("card0", Card::CAMERA_NAME_TEXT), CAMERA_ID);
    EXPECT_EQ(Manager().GetCardInfo("card0", ViewerBiz3::CARD_OPENED), "0");
    std::string value;
    EXPECT_EQ(Manager().GetCardNodeValue("card0", "SerialBaudRate", value), -1) << "card not opened";

    bench.Events().Clear();
    EXPECT_EQ(Manager().OpenCard("nocard"), -1);
    ASSERT_EQ(Manager().OpenCard("card0"), 0);
    EXPECT_EQ(Manager().GetOpenedCardIds(), std::vector<std::string>{"card0"});
    EXPECT_EQ(Manager().GetCardInfo("card0", ViewerBiz3::CARD_OPENED), "1");
    const auto deviceLists = bench.Events().Snapshot().deviceLists;
    ASSERT_EQ(deviceLists.size(), 1u) << "an unknown card sends nothing";
    EXPECT_EQ(deviceLists[0].first, std::vector<std::string>{"card0"});
    EXPECT_EQ(deviceLists[0].second, std::vector<std::string>{""});

    ASSERT_EQ(Manager().OpenCLCamera(CAMERA_ID, "CameraLink", "COM1"), 0);
    ASSERT_EQ(camera.Counters().clProtocolCalls.size(), 1u);
    EXPECT_EQ(camera.Counters().clProtocolCalls[0].protocol, "CL-Base");
    EXPECT_EQ(camera.Counters().clProtocolCalls[0].serialPort, "COM3");
    EXPECT_EQ(Manager().GetOpenedCameraIds(), std::vector<std::string>{CAMERA_ID});
    EXPECT_EQ(Manager().GetCameraNodeValue(CAMERA_ID, "Width", value), 0);
    EXPECT_EQ(value, "640");
    EXPECT_EQ(Manager().SetCardNodeValue("card0", "SerialBaudRate", "115200"), 0);
    EXPECT_EQ(Manager().GetCardNodeValue("card0", "SerialBaudRate", value), 0);
    EXPECT_EQ(value, "115200");
    EXPECT_NE(Manager().GetNodeMap(ViewerBiz3::FOCUS_CARD, "card0", ViewerBiz3::NODEMAP_MODULE0), nullptr);
    EXPECT_EQ(Manager().CloseCLCamera(CAMERA_ID), 0);
    ASSERT_EQ(camera.Counters().clProtocolCalls.size(), 2u);
    EXPECT_TRUE(camera.Counters().clProtocolCalls[1].unbind);
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
    EXPECT_EQ(Manager().CloseCLCamera("Nobody(0)"), -1);

    ASSERT_EQ(Manager().OpenCLCamera(CAMERA_ID, "CameraLink", "COM1"), 0);
    EXPECT_EQ(Manager().CloseCard("card0"), 0) << "closing the card unbinds its camera first";
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
    EXPECT_TRUE(Manager().GetOpenedCardIds().empty());
    EXPECT_EQ(Manager().CloseCard("card0"), -1) << "not opened";

    ASSERT_EQ(Manager().OpenCLCamera(SERIAL_ONLY_ID, "GenCP", "COM2"), 0);
    EXPECT_EQ(ScriptedSdk::Instance().FindDevice("G1")->Counters().opens, 0u) << "a serial-only camera has no card";
    EXPECT_TRUE(Manager().GetOpenedCardIds().empty());
    EXPECT_EQ(Manager().CloseCamera(SERIAL_ONLY_ID), 0) << "falls through to the Camera Link path";
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
}

// A camera that cannot be bound leaves its card open and is shown closed.
TEST_F(CameraLinkTest, OpeningACameraOpensItsCardAndAFailedBindOrAnEmptyProtocolOrPortClosesIt)
{
    auto& camera = ListCameras();
    camera.SetResult(Scripted::SdkCall::SetCLProtocol, -1);
    bench.Events().Clear();
    EXPECT_NE(Manager().OpenCLCamera(CAMERA_ID, "CameraLink", "COM1"), 0);
    EXPECT_EQ(Manager().GetOpenedCardIds(), std::vector<std::string>{"card0"});
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
    const auto deviceLists = bench.Events().Snapshot().deviceLists;
    ASSERT_FALSE(deviceLists.empty());
    EXPECT_EQ(deviceLists.back().second, std::vector<std::string>{CAMERA_ID});

    camera.SetResult(Scripted::SdkCall::SetCLProtocol, 0);
    ASSERT_EQ(Manager().OpenCLCamera(CAMERA_ID, "CameraLink", "COM1"), 0);
    EXPECT_EQ(camera.Counters().clProtocolCalls.back().protocol, "CameraLink");
    EXPECT_EQ(Manager().OpenCLCamera(CAMERA_ID, "", "COM1"), 0);
    EXPECT_EQ(Manager().GetCameraInfo(CAMERA_ID, ViewerBiz3::CAM_OPENED), "0");
    EXPECT_TRUE(Manager().GetOpenedCameraIds().empty());
    EXPECT_EQ(Manager().OpenCLCamera("Nobody(0)", "CameraLink", "COM1"), -1);
}
