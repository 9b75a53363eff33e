// The show-mode camera: its stored show mode and its chunk-sized statistics.
#include <gtest/gtest.h>

#include <memory>

#include "camera/SLCamera.h"
#include "support/common/CameraHandles.h"
#include "support/common/CameraLogRecorder.h"
#include "support/common/CameraTestHost.h"
#include "support/scripted/ScriptedSdk.h"
#include "support/common/WaitUntil.h"

namespace {

using namespace std::chrono_literals;
using Scripted::FrameScript;
using Scripted::FrameStep;
using Scripted::WhenExhausted;

const std::string serialNumber = "SL1";
const std::string cameraKey = "Show(SL1)";

class SLCameraTest : public ::testing::Test {
protected:
    Scripted::ScriptedDevice& device = Scripted::OnlyDevice(Scripted::AreaCamera(serialNumber, "Show"));
    CameraLogRecorder log;
    CameraTestHost host;

    SLCamera* GrabbingCamera(FrameScript script)
    {
        device.SetFrameScript(std::move(script));
        auto camera = std::make_unique<SLCamera>(CreateCameraHandle(~0ull, serialNumber));
        camera->SetName(cameraKey);
        camera->SetKey(cameraKey);
        SLCamera* raw = host.Adopt(std::move(camera));
        EXPECT_EQ(raw->OpenCamera(1), 0);
        EXPECT_EQ(raw->StartGrab(0, 4294967295ull), 0);
        return raw;
    }

    static double Info(Camera* camera, ViewerBiz3::CAM_INFO info) { return std::stod(camera->GetInfo(info)); }
};

TEST_F(SLCameraTest, BandwidthCountsTheBytesOfAllChunks)
{
    // 1 000 000 + 250 000 bytes a frame are 10 Mbit, whatever the pixel format says.
    SLCamera* camera =
        GrabbingCamera(FrameScript::Empty().Add(FrameStep::Frame(1, 8, 8).Chunks({1000000, 250000})).Period(20ms));

    ASSERT_TRUE(WaitUntil([&] { return Info(camera, ViewerBiz3::CAM_FRAME_COUNT) >= 20; }));
    const double rate = Info(camera, ViewerBiz3::CAM_FRAME_RATE);
    ASSERT_GT(rate, 0);
    EXPECT_NEAR(Info(camera, ViewerBiz3::CAM_BANDWIDTH) / rate, 10.0, 0.01);
    ASSERT_EQ(camera->StopGrab(false), 0);
}

TEST_F(SLCameraTest, FramesWithoutChunksCountButCarryNoBandwidth)
{
    SLCamera* camera = GrabbingCamera(FrameScript::Empty().Add(FrameStep::Frame(1)).Period(20ms));

    ASSERT_TRUE(WaitUntil([&] { return Info(camera, ViewerBiz3::CAM_FRAME_RATE) > 0; }));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_BANDWIDTH), "0.000");
    ASSERT_EQ(camera->StopGrab(false), 0);
    EXPECT_EQ(device.Counters().ImagesOutstanding(), 0u);
}

TEST_F(SLCameraTest, FrameIdsAreNotCheckedAndFailuresReportTheirOwnId)
{
    SLCamera* camera = GrabbingCamera(FrameScript::Empty()
                                          .AddFrames(1, 1)
                                          .AddFrames(50, 1)
                                          .Add(FrameStep::Code(-5))
                                          .Add([] {
                                              FrameStep step = FrameStep::Code(-5).WithImage();
                                              step.frameId = 77;
                                              return step;
                                          }())
                                          .Then(WhenExhausted::KeepTimingOut));

    ASSERT_TRUE(WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_ERROR_COUNT) == "2"; }));
    ASSERT_EQ(camera->StopGrab(false), 0);
    EXPECT_EQ(log.Count("The frame id increment"), 0u);
    EXPECT_TRUE(log.Contains("Error", "Failed to get image, errorcode = -5, frameId = 0"));
    EXPECT_TRUE(log.Contains("Error", "Failed to get image, errorcode = -5, frameId = 77"));
    EXPECT_EQ(device.Counters().ImagesOutstanding(), 0u);
}

} // namespace
