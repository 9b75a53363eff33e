// A camera's life as the device manager drives it: open and close, its information
// fields, node access, node maps, the watchdog that notices a lost device, and the
// address change.
#include <gtest/gtest.h>

#include <memory>

#include "camera/Camera.h"
#include "genapi/GenApi.h"
#include "support/common/CameraHandles.h"
#include "support/common/CameraLogRecorder.h"
#include "support/common/CameraTestHost.h"
#include "support/scripted/ScriptedSdk.h"
#include "support/common/WaitUntil.h"

using ViewerBiz3::CAM_INFO;

namespace {

const std::string serialNumber = "S1";
const std::string cameraKey = "Line3(S1)";
const std::string adapterKey = "eth0[169.254.10.1]";
constexpr uint64_t allTransports = ~0ull;

class CameraTest : public ::testing::Test {
protected:
    Scripted::ScriptedDevice& device = Scripted::OnlyDevice(Scripted::AreaCamera(serialNumber, "Line3"));
    CameraLogRecorder log;
    CameraTestHost host;

    // A camera as discovery leaves it, owned by the host.
    Camera* DiscoveredCamera()
    {
        auto camera = std::make_unique<Camera>(CreateCameraHandle(allTransports, serialNumber));
        camera->SetName(cameraKey);
        camera->SetKey(cameraKey);
        camera->SetListKey(adapterKey);
        return host.Adopt(std::move(camera));
    }
};

TEST_F(CameraTest, OpensOnceAndClosesWithItsMessages)
{
    Camera* camera = DiscoveredCamera();

    ASSERT_EQ(camera->OpenCamera(1), 0);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_OPENED), "1");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_AVAILABLE), "1");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ONLINE), "1");
    EXPECT_EQ(log.Count("Open camera success, cost time = "), 1u);

    EXPECT_EQ(camera->OpenCamera(1), -1);
    EXPECT_TRUE(log.Contains("Info", "Failed to open the camera. The camera is already open."));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_OPENED), "1");
    EXPECT_EQ(device.Counters().opens, 1u);

    ASSERT_EQ(camera->CloseCamera(true), 0);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_OPENED), "0");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ONLINE), "0");
    EXPECT_TRUE(log.Contains("Info", "Close camera success!"));
    ASSERT_EQ(host.DeviceLists().size(), 1u);
    EXPECT_EQ(host.DeviceLists()[0].listKey, adapterKey);
    EXPECT_EQ(host.DeviceLists()[0].key, cameraKey);
    EXPECT_EQ(device.Counters().closes, 1u);

    // Closed cameras can be opened again.
    EXPECT_EQ(camera->OpenCamera(1), 0);
}

TEST_F(CameraTest, CloseWithoutHandleOrOpenDevice)
{
    Camera withoutHandle(nullptr);
    EXPECT_EQ(withoutHandle.CloseCamera(false), -1);
    EXPECT_TRUE(log.Lines().empty());
    EXPECT_EQ(withoutHandle.CloseCamera(true), -1);
    EXPECT_TRUE(log.Contains("Info", "Failed to close the camera. Handle is NULL."));

    Camera* neverOpened = DiscoveredCamera();
    EXPECT_EQ(neverOpened->CloseCamera(true), -2);
    EXPECT_TRUE(host.DeviceLists().empty());
}

TEST_F(CameraTest, NodeAccessNeedsAnOpenCamera)
{
    Camera* camera = DiscoveredCamera();
    std::string value;
    std::string min, max, inc;

    EXPECT_EQ(camera->GetNodeValue("Width", value, true), -12);
    EXPECT_EQ(camera->SetNodeValue("Width", "320", true), -12);
    EXPECT_EQ(camera->GetIntNodeInfo("Width", value, min, max, inc, true), -12);
    EXPECT_TRUE(log.Lines().empty());

    ASSERT_EQ(camera->OpenCamera(1), 0);
    ASSERT_EQ(camera->SetNodeValue("Width", "320", true), 0);
    ASSERT_EQ(camera->GetNodeValue("Width", value, true), 0);
    EXPECT_EQ(value, "320");
    ASSERT_EQ(camera->GetIntNodeInfo("Width", value, min, max, inc, true), 0);
    EXPECT_EQ(min, "16");
    EXPECT_EQ(inc, "16");
    // The auxiliary node map answers when asked for.
    EXPECT_EQ(camera->GetIntNodeInfo("StreamBufferCount", value, min, max, inc, false), 0);

    ASSERT_EQ(camera->CloseCamera(false), 0);
    EXPECT_EQ(camera->GetNodeValue("Width", value, true), -12);
}

TEST_F(CameraTest, FailedNodeAccessIsLoggedWithTheNodeName)
{
    Camera* camera = DiscoveredCamera();
    ASSERT_EQ(camera->OpenCamera(1), 0);
    std::string value;
    std::string min, max, inc;

    // A missing node (-4) is routine when reading and stays out of the log.
    EXPECT_EQ(camera->GetNodeValue("NoSuchNode", value, true), -4);
    EXPECT_EQ(camera->GetNodeValue("Root", value, true), -6);
    EXPECT_EQ(camera->SetNodeValue("NoSuchNode", "1", true), -4);
    EXPECT_NE(camera->GetIntNodeInfo("PixelFormat", value, min, max, inc, true), 0);

    EXPECT_EQ(log.Count("Failed to GetNodeValue. nodeName = NoSuchNode"), 0u);
    EXPECT_TRUE(log.Contains("Error", "Failed to GetNodeValue. nodeName = Root, message = Unsupported type"));
    EXPECT_EQ(log.Count("Failed to SetNodeValue. nodeName = NoSuchNode, message = "), 1u);
    EXPECT_EQ(log.Count("Failed to GetIntNodeInfo. nodeName = PixelFormat, message = "), 1u);
    for (const auto& line : log.Lines()) {
        if (line.level == "Error") {
            EXPECT_EQ(line.source, cameraKey);
        }
    }
}

TEST_F(CameraTest, HostMayOnlySetItsOwnTexts)
{
    Camera* camera = DiscoveredCamera();

    EXPECT_EQ(camera->SetInfo(ViewerBiz3::CAM_HOST_TEXT40, "left"), 0);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_HOST_TEXT40), "left");
    ASSERT_EQ(host.Statistics().size(), 1u);
    EXPECT_EQ(host.Statistics()[0].key, cameraKey);
    EXPECT_TRUE(host.Statistics()[0].flag);

    for (CAM_INFO settable : {ViewerBiz3::CAM_IMAGE_BITS, ViewerBiz3::CAM_ACQ_LIMIT, ViewerBiz3::CAM_TEXT67,
                              ViewerBiz3::CAM_TEXT68, ViewerBiz3::CAM_HOST_TEXT43})
        EXPECT_EQ(camera->SetInfo(settable, "7"), 0) << settable;

    for (CAM_INFO readOnly : {ViewerBiz3::CAM_NAME, ViewerBiz3::CAM_FRAME_RATE, ViewerBiz3::CAM_SERIAL,
                              ViewerBiz3::CAM_OFFSET_Y, ViewerBiz3::CAM_SERIAL_ALT, static_cast<CAM_INFO>(99)})
        EXPECT_EQ(camera->SetInfo(readOnly, "x"), -1) << readOnly;
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_NAME), cameraKey);
    EXPECT_EQ(host.Statistics().size(), 6u);
}

TEST_F(CameraTest, NodeMapsAndDescriptionsComeFromTheSdkModules)
{
    Camera withoutHandle(nullptr);
    EXPECT_EQ(withoutHandle.GetNodeMap(ViewerBiz3::NODEMAP_MODULE3), nullptr);
    EXPECT_EQ(withoutHandle.GetXML(ViewerBiz3::FOCUS_CAMERA_FEATURES), nullptr);
    EXPECT_EQ(log.Count("Failed to get XML. Handle is NULL."), 2u);

    Camera* camera = DiscoveredCamera();
    EXPECT_EQ(camera->GetNodeMap(ViewerBiz3::NODEMAP_MODULE3), device.NodeMap(3));
    EXPECT_EQ(camera->GetNodeMap(ViewerBiz3::NODEMAP_MODULE2), device.NodeMap(2));
    EXPECT_EQ(camera->GetNodeMap(static_cast<ViewerBiz3::NodeMapType>(5)), nullptr);
    ZYLGENICAM::IModule* features = camera->GetXML(ViewerBiz3::FOCUS_CAMERA_FEATURES);
    ASSERT_NE(features, nullptr);
    EXPECT_EQ(features->GetNodeMap(), device.NodeMap(3));
    EXPECT_EQ(camera->GetXML(ViewerBiz3::FOCUS_NONE), nullptr);
    EXPECT_EQ(camera->GetXML(static_cast<ViewerBiz3::FOCUS_TYPE>(9)), nullptr);
}

TEST_F(CameraTest, LostCameraIsStoppedLoggedOnceAndRemoved)
{
    device.SetFrameScript(Scripted::FrameScript().Period(std::chrono::milliseconds(20)));
    Camera* camera = DiscoveredCamera();
    ASSERT_EQ(camera->OpenCamera(1), 0);
    ASSERT_EQ(camera->StartGrab(0, 4294967295ull), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() > 0; }));

    device.Lose();

    ASSERT_TRUE(WaitUntil([&] { return !host.Removed().empty(); }));
    EXPECT_EQ(host.Removed(), std::vector<std::string>{cameraKey});
    EXPECT_FALSE(host.Owns(cameraKey));
    EXPECT_EQ(log.Count("Camera is lost."), 1u);
    const auto deviceLists = host.DeviceLists();
    ASSERT_FALSE(deviceLists.empty());
    EXPECT_EQ(deviceLists.back().key, cameraKey);
    EXPECT_EQ(deviceLists.back().available, "0") << "the list announcing the loss shows the camera unavailable";
    const Scripted::DeviceCounters counters = device.Counters();
    EXPECT_EQ(counters.stopGrabbings, 1u);
    EXPECT_EQ(counters.camerasDestroyed, 1u);
    EXPECT_EQ(counters.ImagesOutstanding(), 0u);
    EXPECT_EQ(counters.doubleReleases, 0u);
    EXPECT_FALSE(host.Images().back().withImage);
}

TEST_F(CameraTest, LostCameraLinkCameraBecomesAPlaceholder)
{
    // The manager keeps Camera Link cameras: this one is not handed to the host.
    auto camera = std::make_unique<Camera>(CreateCameraHandle(allTransports, serialNumber));
    camera->SetName(cameraKey);
    camera->SetKey(cameraKey);
    camera->SetKind(4);
    camera->SetVirtualSuffix("2");
    camera->SetText(ViewerBiz3::CAM_CL_PROTOCOL, "GenCP");
    ASSERT_EQ(camera->OpenCamera(1), 0);
    ASSERT_EQ(camera->StartGrab(0, 4294967295ull), 0);

    device.Lose();

    ASSERT_TRUE(WaitUntil([&] { return !host.AddedCLCameras().empty(); }));
    EXPECT_EQ(host.AddedCLCameras()[0], camera.get());
    EXPECT_EQ(host.Removed(), std::vector<std::string>{cameraKey});
    ASSERT_TRUE(WaitUntil([&] { return !host.DeviceLists().back().withArguments; }));
    EXPECT_EQ(camera->GetName(), "Virtual camera-2");
    EXPECT_EQ(camera->GetKey(), "Virtual camera-2");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_SERIAL), "NA");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_CL_PROTOCOL), "NA");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_TEXT59), "1");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_TEXT60), "0");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_OPENED), "0");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_GRABBING), "0") << "the placeholder does not grab on";
    EXPECT_EQ(device.Counters().stopGrabbings, 1u);
}

TEST_F(CameraTest, AddressChangeOnlyWhileClosed)
{
    Camera* camera = DiscoveredCamera();
    ASSERT_EQ(camera->OpenCamera(1), 0);
    EXPECT_EQ(camera->ModifyCameraIP("169.254.10.30", "255.255.0.0", "0.0.0.0", false), -1);
    EXPECT_TRUE(device.Counters().cameraIPCalls.empty());
    EXPECT_TRUE(host.Refreshes().empty());
    ASSERT_EQ(camera->CloseCamera(false), 0);

    EXPECT_EQ(camera->ModifyCameraIP("169.254.10.30", "255.255.0.0", "0.0.0.0", true), 0);
    const auto calls = device.Counters().cameraIPCalls;
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].ip, "169.254.10.30");
    EXPECT_TRUE(calls[0].persistent);
    EXPECT_EQ(host.Refreshes(), std::vector<int>{1});

    // The IP library's -4 is a success.
    device.SetResult(Scripted::SdkCall::SetCameraIP, -4);
    EXPECT_EQ(camera->ModifyCameraIP("169.254.10.31", "255.255.0.0", "0.0.0.0", false), 0);

    device.SetResult(Scripted::SdkCall::SetCameraIP, -3);
    EXPECT_EQ(camera->ModifyCameraIP("169.254.10.32", "255.255.0.0", "0.0.0.0", false), -3);
    EXPECT_TRUE(log.Contains(
        "Error", "Set camera ip failed, ip = 169.254.10.32, mask = 255.255.0.0, gateway = 0.0.0.0, ret = -3"));
    EXPECT_EQ(host.Refreshes().size(), 3u);

    Camera withoutHandle(nullptr);
    EXPECT_EQ(withoutHandle.ModifyCameraIP("169.254.10.33", "255.255.0.0", "0.0.0.0", false), -1);
}

TEST_F(CameraTest, DestroyingAnOpenCameraClosesAndFreesTheHandle)
{
    {
        Camera camera(CreateCameraHandle(allTransports, serialNumber));
        ASSERT_EQ(camera.OpenCamera(1), 0);
        ASSERT_EQ(camera.StartGrab(0, 4294967295ull), 0);
    }
    const Scripted::DeviceCounters counters = device.Counters();
    EXPECT_EQ(counters.closes, 1u);
    EXPECT_EQ(counters.camerasDestroyed, 1u);
    EXPECT_EQ(counters.ImagesOutstanding(), 0u);
}

} // namespace
