// Grabbing on a scripted camera: start and stop, statistics, failing reads, frame limits
// and a slow host.
#include <gtest/gtest.h>

#include "camera/SLCamera.h"
#include "support/common/CameraLogRecorder.h"
#include "support/common/CameraTestHost.h"
#include "support/common/ProcessThreads.h"
#include "support/scripted/ScriptedSdk.h"
#include "support/common/WaitUntil.h"

namespace {

using namespace std::chrono_literals;
using Scripted::FrameScript;
using Scripted::FrameStep;
using Scripted::WhenExhausted;

const std::string serialNumber = "S1";
const std::string cameraKey = "Line3(S1)";

class CameraAcquisitionTest : public ::testing::Test {
protected:
    Scripted::ScriptedDevice& device = Scripted::OnlyDevice(Scripted::AreaCamera(serialNumber, "Line3"));
    CameraLogRecorder log;
    CameraTestHost host;

    Camera* OpenedCamera(bool showMode = false)
    {
        Camera* camera = showMode ? host.AddCamera<SLCamera>(serialNumber, cameraKey, "eth0")
                                  : host.AddCamera(serialNumber, cameraKey, "eth0");
        EXPECT_EQ(camera->OpenCamera(1), 0);
        return camera;
    }

    static double Number(Camera* camera, ViewerBiz3::CAM_INFO info) { return std::stod(camera->GetInfo(info)); }
};

TEST_F(CameraAcquisitionTest, StartDeliversImagesStopClearsTheViewAndRestartReusesTheThreads)
{
    device.SetFrameScript(FrameScript().Period(10ms));
    Camera* camera = OpenedCamera();

    ASSERT_EQ(camera->StartGrab(0, continuousGrab), 0);
    EXPECT_TRUE(log.Contains("Info", "Start grab image..."));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_GRABBING), "1");
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() >= 3; }));
    EXPECT_EQ(camera->StartGrab(0, continuousGrab), -1);
    EXPECT_TRUE(log.Contains("Info", "Failed to start grab. The camera is grabbing."));

    ASSERT_EQ(camera->StopGrab(true), 0);
    EXPECT_TRUE(log.Contains("Info", "Stop grab image..."));
    EXPECT_EQ(host.Recorded().deviceLists.back().key, cameraKey);
    ASSERT_TRUE(WaitUntil([&] { return !host.Recorded().images.back().withImage; }));
    EXPECT_EQ(host.Recorded().images.front().key, cameraKey);
    EXPECT_EQ(camera->StopGrab(true), -1);
    EXPECT_TRUE(log.Contains("Info", "Failed to stop grab."));
    EXPECT_EQ(device.Counters().startGrabbings, 1u);
    EXPECT_EQ(device.Counters().stopGrabbings, 1u);

    const std::size_t threadsWhileParked = ProcessThreadCount();
    const std::size_t imagesBefore = host.ImagesWithPicture();
    ASSERT_EQ(camera->StartGrab(0, continuousGrab), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() > imagesBefore; }));
    EXPECT_EQ(ProcessThreadCount(), threadsWhileParked);
    ASSERT_EQ(camera->StopGrab(false), 0);
    EXPECT_EQ(device.Counters().ImagesOutstanding(), 0u);
}

// Per camera kind: the frame ids the two failure lines report and whether frame-id gaps are.
struct FailedReadCase {
    bool showMode;
    std::vector<int> failureIds;
    std::size_t gapLines;
};

class FailedReadTest : public CameraAcquisitionTest, public ::testing::WithParamInterface<FailedReadCase> {};

TEST_P(FailedReadTest, FailuresAreCountedAndLoggedButTimeoutsAreNeitherFramesNorErrors)
{
    FrameStep failureWithImage = FrameStep::Code(-5).WithImage();
    failureWithImage.frameId = 77;
    device.SetFrameScript(FrameScript::Empty()
                              .AddFrames(1, 1)
                              .AddFrames(50, 1)
                              .Add(FrameStep::Code(-5))
                              .Add(failureWithImage)
                              .Then(WhenExhausted::KeepTimingOut));
    Camera* camera = OpenedCamera(GetParam().showMode);
    ASSERT_EQ(camera->StartGrab(0, continuousGrab), 0);

    ASSERT_TRUE(WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_ERROR_COUNT) == "2"; }));
    // Failed reads count as frames taken; the timeouts after them do not.
    ASSERT_TRUE(device.WaitUntil([](const auto& c) { return c.getImageCalls >= 8; }));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), "4");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ERROR_COUNT), "2");
    ASSERT_EQ(camera->StopGrab(false), 0);
    for (int id : GetParam().failureIds)
        EXPECT_TRUE(log.Contains("Error", "Failed to get image, errorcode = -5, frameId = " + std::to_string(id)));
    EXPECT_EQ(log.Count("Failed to get image, errorcode = -5"), 2u);
    EXPECT_EQ(log.Count("The frame id increment"), GetParam().gapLines);
    EXPECT_EQ(device.Counters().ImagesOutstanding(), 0u);
}

INSTANTIATE_TEST_SUITE_P(CameraKinds, FailedReadTest,
                         ::testing::Values(FailedReadCase{false, {50, 50}, 1}, FailedReadCase{true, {0, 77}, 0}),
                         [](const auto& info) { return info.param.showMode ? "ShowMode" : "Area"; });

// Only a frame the device sent reaches the limit; the failed read still shows in the frame count.
TEST_F(CameraAcquisitionTest, FrameLimitStopsTheGrabByItselfAndTheNextStartWorks)
{
    device.SetFrameScript(FrameScript::Empty().Add(FrameStep::Timeout()).Add(FrameStep::Code(-5)).AddFrames(1, 5));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, 1), 0);

    ASSERT_TRUE(WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_GRABBING) == "0"; }));
    EXPECT_EQ(device.Counters().lastFrameLimit, 1u);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), "2");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ERROR_COUNT), "1");
    EXPECT_EQ(device.Counters().imagesHandedOut, 1u);
    ASSERT_TRUE(WaitUntil([&] { return log.Count("Stop grab image...") == 1; }));
    EXPECT_EQ(device.Counters().stopGrabbings, 1u);
    EXPECT_TRUE(WaitUntil([&] { return device.Counters().ImagesOutstanding() == 0; }));

    ASSERT_EQ(camera->StartGrab(0, 3), 0);
    ASSERT_TRUE(WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_GRABBING) == "0"; }));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), "3");
    EXPECT_EQ(device.Counters().imagesHandedOut, 4u);
}

// Per camera kind and frame: the megabits a frame counts for in the bandwidth.
struct BandwidthCase {
    bool showMode;
    FrameStep frame;
    double megabitsPerFrame;
};

class BandwidthTest : public CameraAcquisitionTest, public ::testing::WithParamInterface<BandwidthCase> {};

TEST_P(BandwidthTest, FollowsFrameSizeAndRate)
{
    device.SetFrameScript(FrameScript::Empty().Add(GetParam().frame).Period(20ms));
    Camera* camera = OpenedCamera(GetParam().showMode);
    ASSERT_EQ(camera->StartGrab(0, continuousGrab), 0);
    ASSERT_TRUE(WaitUntil([&] { return Number(camera, ViewerBiz3::CAM_FRAME_COUNT) >= 20; }));
    ASSERT_TRUE(WaitUntil([&] { return Number(camera, ViewerBiz3::CAM_DISPLAY_RATE) > 0; }));

    const double rate = Number(camera, ViewerBiz3::CAM_FRAME_RATE);
    ASSERT_GT(rate, 0);
    // Frames come at most every 20 ms: six of them span at least 119 ms on the millisecond clock.
    EXPECT_LE(rate, 6 * 1000.0 / 119);
    EXPECT_NEAR(Number(camera, ViewerBiz3::CAM_BANDWIDTH) / rate, GetParam().megabitsPerFrame, 0.01);
    EXPECT_LE(Number(camera, ViewerBiz3::CAM_DISPLAY_RATE), rate + 0.001);
    // A publication per 300 ms, not per frame.
    const auto statistics = host.Recorded().statistics;
    EXPECT_LT(statistics.size() * 2, Number(camera, ViewerBiz3::CAM_FRAME_COUNT));
    EXPECT_EQ(statistics.back(), cameraKey);
    ASSERT_EQ(camera->StopGrab(false), 0);
}

INSTANTIATE_TEST_SUITE_P(CameraKinds, BandwidthTest,
                         ::testing::Values(
                             // 1000 x 500 RGB8 is 1.5 MB: 12 Mbit.
                             BandwidthCase{false, FrameStep::Frame(1, 1000, 500, Scripted::PFNC_RGB8), 12.0},
                             // A show-mode frame counts the bytes of its chunks, whatever the pixel format says.
                             BandwidthCase{true, FrameStep::Frame(1, 8, 8).Chunks({1000000, 250000}), 10.0},
                             BandwidthCase{true, FrameStep::Frame(1), 0.0}),
                         [](const auto& info) {
                             return (info.param.showMode ? "ShowMode" : "Area") +
                                    std::to_string(static_cast<int>(info.param.megabitsPerFrame)) + "Megabits";
                         });

// The frames a slow host has no time for are dropped, and closing while it holds one stops
// everything and releases every frame.
TEST_F(CameraAcquisitionTest, SlowHostSeesOnlyTheNewestFramesAndCloseWhileGrabbingReleasesThemAll)
{
    device.SetFrameScript(FrameScript().Period(3ms));
    host.SetImageHoldTime(80ms);
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuousGrab), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() >= 5; }));
    EXPECT_GT(device.Counters().imagesHandedOut, 4 * host.ImagesWithPicture());
    // Frames the host has no time for are dropped, not queued up.
    EXPECT_LE(device.Counters().ImagesOutstanding(), 8u);

    ASSERT_EQ(camera->CloseCamera(true), 0);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_GRABBING), "0");
    EXPECT_EQ(device.Counters().stopGrabbings, 1u);
    EXPECT_EQ(device.Counters().closes, 1u);
    EXPECT_EQ(device.Counters().ImagesOutstanding(), 0u);
}

} // namespace
