// A camera's life as the device manager drives it: open and close, its information
// fields, node access, the watchdog that notices a lost device, and the address change.
#include <gtest/gtest.h>

#include "support/common/CameraLogRecorder.h"
#include "support/common/CameraTestHost.h"
#include "support/scripted/ScriptedSdk.h"
#include "support/common/WaitUntil.h"

namespace {

const std::string serialNumber = "S1";
const std::string cameraKey = "Line3(S1)";
const std::string adapterKey = "eth0[169.254.10.1]";

class CameraTest : public ::testing::Test {
protected:
    Scripted::ScriptedDevice& device = Scripted::OnlyDevice(Scripted::AreaCamera(serialNumber, "Line3"));
    CameraLogRecorder log;
    CameraTestHost host;
    Camera* camera = host.AddCamera(serialNumber, cameraKey, adapterKey);
};

TEST_F(CameraTest, OpensOnceAndClosesWithItsMessages)
{
    Camera withoutHandle(nullptr);
    EXPECT_EQ(withoutHandle.CloseCamera(true), -1);
    EXPECT_TRUE(log.Contains("Info", "Failed to close the camera. Handle is NULL."));
    EXPECT_EQ(camera->CloseCamera(true), -2);

    ASSERT_EQ(camera->OpenCamera(1), 0);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_AVAILABLE), "1");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ONLINE), "1");
    EXPECT_EQ(log.Count("Open camera success, cost time = "), 1u);
    EXPECT_EQ(camera->OpenCamera(1), -1);
    EXPECT_TRUE(log.Contains("Info", "Failed to open the camera. The camera is already open."));
    EXPECT_EQ(device.Counters().opens, 1u);

    EXPECT_TRUE(host.Recorded().deviceLists.empty());
    ASSERT_EQ(camera->CloseCamera(true), 0);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_OPENED), "0");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ONLINE), "0");
    EXPECT_TRUE(log.Contains("Info", "Close camera success!"));
    const auto deviceLists = host.Recorded().deviceLists;
    ASSERT_EQ(deviceLists.size(), 1u);
    EXPECT_EQ(deviceLists[0].listKey, adapterKey);
    EXPECT_EQ(deviceLists[0].key, cameraKey);
    EXPECT_EQ(device.Counters().closes, 1u);
    EXPECT_EQ(camera->OpenCamera(1), 0);
}

// Node access itself is tested with the node maps; the camera adds the open check, the choice
// of node map and the log lines.
TEST_F(CameraTest, NodeAccessNeedsAnOpenCameraAndFailuresAreLogged)
{
    std::string value;
    EXPECT_EQ(camera->SetNodeValue("Width", "320", true), -12);
    EXPECT_EQ(log.Count(""), 0u);

    ASSERT_EQ(camera->OpenCamera(1), 0);
    ASSERT_EQ(camera->SetNodeValue("Width", "320", true), 0);
    ASSERT_EQ(camera->GetNodeValue("Width", value, true), 0);
    EXPECT_EQ(value, "320");
    std::string min, max, inc;
    ASSERT_EQ(camera->GetIntNodeInfo("StreamBufferCount", value, min, max, inc, false), 0);
    EXPECT_EQ(max, "256");

    // A missing node (-4) is routine when reading and stays out of the log.
    EXPECT_EQ(camera->GetNodeValue("NoSuchNode", value, true), -4);
    EXPECT_EQ(camera->GetNodeValue("Root", value, true), -6);
    EXPECT_EQ(camera->SetNodeValue("NoSuchNode", "1", true), -4);
    EXPECT_EQ(log.Count("Failed to GetNodeValue. nodeName = NoSuchNode"), 0u);
    EXPECT_TRUE(log.Contains("Error", "Failed to GetNodeValue. nodeName = Root, message = Unsupported type"));
    EXPECT_EQ(log.Count("Failed to SetNodeValue. nodeName = NoSuchNode, message = "), 1u);

    ASSERT_EQ(camera->CloseCamera(false), 0);
    EXPECT_EQ(camera->GetNodeValue("Width", value, true), -12);
}

TEST_F(CameraTest, LostCameraIsStoppedLoggedOnceAndRemoved)
{
    device.SetFrameScript(Scripted::FrameScript().Period(std::chrono::milliseconds(20)));
    ASSERT_EQ(camera->OpenCamera(1), 0);
    ASSERT_EQ(camera->StartGrab(0, continuousGrab), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() > 0; }));

    device.Lose();

    ASSERT_TRUE(WaitUntil([&] { return !host.Recorded().removed.empty(); }));
    const CameraTestHost::Record record = host.Recorded();
    EXPECT_EQ(record.removed, std::vector<std::string>{cameraKey});
    EXPECT_EQ(log.Count("Camera is lost."), 1u);
    EXPECT_EQ(record.deviceLists.back().key, cameraKey);
    EXPECT_EQ(record.deviceLists.back().available, "0") << "the list announcing the loss shows it unavailable";
    EXPECT_FALSE(record.images.back().withImage);
    const Scripted::DeviceCounters counters = device.Counters();
    EXPECT_EQ(counters.stopGrabbings, 1u);
    EXPECT_EQ(counters.camerasDestroyed, 1u);
    EXPECT_EQ(counters.ImagesOutstanding(), 0u);
}

TEST_F(CameraTest, LostCameraLinkCameraBecomesAPlaceholder)
{
    // The manager keeps Camera Link cameras: this one is not handed to the host.
    const std::string linkKey = "Link(S1)";
    Camera cameraLink(CreateCameraHandle(~0ull, serialNumber));
    cameraLink.SetKey(linkKey);
    cameraLink.SetKind(4);
    cameraLink.SetVirtualSuffix("2");
    ASSERT_EQ(cameraLink.OpenCamera(1), 0);
    ASSERT_EQ(cameraLink.StartGrab(0, continuousGrab), 0);

    device.Lose();

    ASSERT_TRUE(WaitUntil([&] { return !host.Recorded().addedCLCameras.empty(); }));
    EXPECT_EQ(host.Recorded().addedCLCameras[0], &cameraLink);
    EXPECT_EQ(host.Recorded().removed, std::vector<std::string>{linkKey});
    ASSERT_TRUE(WaitUntil([&] { return !host.Recorded().deviceLists.back().withArguments; }));
    EXPECT_EQ(cameraLink.GetName(), "Virtual camera-2");
    EXPECT_EQ(cameraLink.GetKey(), "Virtual camera-2");
    EXPECT_EQ(cameraLink.GetInfo(ViewerBiz3::CAM_OPENED), "0");
    EXPECT_EQ(cameraLink.GetInfo(ViewerBiz3::CAM_GRABBING), "0") << "the placeholder does not grab on";
    EXPECT_EQ(device.Counters().stopGrabbings, 1u);
}

// The device manager's tests cover refusing an open camera; here the IP library's answers.
TEST_F(CameraTest, AddressChangeTakesTheLibrarysMinusFourAsSuccessAndAlwaysRefreshesTheList)
{
    device.SetResult(Scripted::SdkCall::SetCameraIP, -4);
    EXPECT_EQ(camera->ModifyCameraIP("169.254.10.31", "255.255.0.0", "0.0.0.0", false), 0);
    device.SetResult(Scripted::SdkCall::SetCameraIP, -3);
    EXPECT_EQ(camera->ModifyCameraIP("169.254.10.32", "255.255.0.0", "0.0.0.0", false), -3);
    EXPECT_TRUE(log.Contains(
        "Error", "Set camera ip failed, ip = 169.254.10.32, mask = 255.255.0.0, gateway = 0.0.0.0, ret = -3"));
    EXPECT_EQ(host.Recorded().refreshes, (std::vector<int>{ZYLGENICAM::TL_GIGE, ZYLGENICAM::TL_GIGE}));
}

} // namespace
