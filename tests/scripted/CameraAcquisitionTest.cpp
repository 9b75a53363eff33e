// Grabbing on a scripted camera: start and stop, statistics, frame-id gaps, frame limits,
// failing and slow devices, a slow host, and hosts calling from several threads at once.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "camera/Camera.h"
#include "support/common/CameraHandles.h"
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
constexpr unsigned long long continuous = 4294967295ull;

// A camera whose waiting frames can be counted from outside.
class InspectableCamera : public Camera {
public:
    using Camera::Camera;
    ~InspectableCamera() override { ShutDownForDestruction(); }

    std::size_t WaitingImages() { return m_acquisition.QueuedImageCount(); }
};

class CameraAcquisitionTest : public ::testing::Test {
protected:
    Scripted::ScriptedDevice& device = Scripted::OnlyDevice(Scripted::AreaCamera(serialNumber, "Line3"));
    CameraLogRecorder log;
    CameraTestHost host;

    InspectableCamera* OpenedCamera()
    {
        auto camera = std::make_unique<InspectableCamera>(CreateCameraHandle(~0ull, serialNumber));
        camera->SetName(cameraKey);
        camera->SetKey(cameraKey);
        camera->SetListKey("eth0");
        InspectableCamera* raw = host.Adopt(std::move(camera));
        EXPECT_EQ(raw->OpenCamera(1), 0);
        return raw;
    }

    bool StoppedByItself(Camera* camera)
    {
        return WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_GRABBING) == "0"; });
    }

    void ExpectEveryImageReleasedOnce()
    {
        const Scripted::DeviceCounters counters = device.Counters();
        EXPECT_EQ(counters.ImagesOutstanding(), 0u);
        EXPECT_EQ(counters.doubleReleases, 0u);
        EXPECT_EQ(counters.imageUsesAfterRelease, 0u);
    }
};

TEST_F(CameraAcquisitionTest, StartDeliversImagesAndStopClearsTheView)
{
    device.SetFrameScript(FrameScript().Period(10ms));
    Camera* camera = OpenedCamera();

    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    EXPECT_TRUE(log.Contains("Info", "Start grab image..."));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_GRABBING), "1");
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() >= 3; }));

    EXPECT_EQ(camera->StartGrab(0, continuous), -1);
    EXPECT_TRUE(log.Contains("Info", "Failed to start grab. The camera is grabbing."));
    EXPECT_EQ(device.Counters().startGrabbings, 1u);

    ASSERT_EQ(camera->StopGrab(true), 0);
    EXPECT_TRUE(log.Contains("Info", "Stop grab image..."));
    EXPECT_EQ(host.DeviceLists().back().key, cameraKey);
    ASSERT_TRUE(WaitUntil([&] { return !host.Images().back().withImage; }));
    for (const auto& image : host.Images()) {
        EXPECT_EQ(image.key, cameraKey);
        EXPECT_EQ(image.extra1, 0);
        EXPECT_EQ(image.extra2, 0);
    }
    EXPECT_EQ(camera->StopGrab(true), -1);
    EXPECT_TRUE(log.Contains("Info", "Failed to stop grab."));
    EXPECT_EQ(device.Counters().stopGrabbings, 1u);
    ExpectEveryImageReleasedOnce();
}

TEST_F(CameraAcquisitionTest, RestartWakesTheSameThreads)
{
    device.SetFrameScript(FrameScript().Period(10ms));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() >= 1; }));
    ASSERT_EQ(camera->StopGrab(false), 0);
    const std::size_t threadsWhileParked = ProcessThreadCount();
    const std::size_t imagesBefore = host.ImagesWithPicture();

    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() > imagesBefore; }));
    EXPECT_EQ(ProcessThreadCount(), threadsWhileParked);
    ASSERT_EQ(camera->StopGrab(false), 0);
    ExpectEveryImageReleasedOnce();
}

TEST_F(CameraAcquisitionTest, TimeoutsAreNeitherFramesNorErrors)
{
    device.SetFrameScript(FrameScript::Empty().AddFrames(1, 2).Then(WhenExhausted::KeepTimingOut));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);

    // The count the timeout publishes catches up with the two frames.
    ASSERT_TRUE(WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT) == "2"; }));
    ASSERT_TRUE(device.WaitUntil([](const auto& c) { return c.getImageCalls >= 5; }));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), "2");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ERROR_COUNT), "0");
    ASSERT_EQ(camera->StopGrab(false), 0);
    ExpectEveryImageReleasedOnce();
}

TEST_F(CameraAcquisitionTest, FailedReadsAreCountedAndLoggedWithTheLastGoodId)
{
    device.SetFrameScript(FrameScript::Empty()
                              .AddFrames(1, 2)
                              .Add(FrameStep::Code(-5))
                              .Add(FrameStep::Code(-5).WithImage())
                              .Then(WhenExhausted::KeepTimingOut));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);

    ASSERT_TRUE(WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_ERROR_COUNT) == "2"; }));
    // Failed reads count as frames taken.
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), "4");
    EXPECT_TRUE(log.Contains("Error", "Failed to get image, errorcode = -5, frameId = 2"));
    EXPECT_EQ(log.Count("Failed to get image, errorcode = -5"), 2u);
    ASSERT_EQ(camera->StopGrab(false), 0);
    ExpectEveryImageReleasedOnce();
}

TEST_F(CameraAcquisitionTest, FrameIdGapIsReportedOncePerPeriod)
{
    device.SetFrameScript(FrameScript::Empty().AddFrames(1, 2).AddFrames(5, 1).AddFrames(9, 1).AddFrames(20, 1).Then(
        WhenExhausted::KeepTimingOut));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(device.WaitUntil([](const auto& c) { return c.stepsAnswered >= 6; }));
    ASSERT_EQ(camera->StopGrab(false), 0);

    EXPECT_EQ(log.Count("The frame id increment is not 1"), 1u);
    EXPECT_TRUE(log.Contains("Info", "The frame id increment is not 1, pre id = 2, current id = 5"));
}

TEST_F(CameraAcquisitionTest, RestartedFrameIdsCountAsAGap)
{
    device.SetFrameScript(FrameScript::Empty()
                              .AddFrames(10, 2)
                              .Add(FrameStep::Frame(12).After(400ms))
                              .AddFrames(3, 1)
                              .Then(WhenExhausted::KeepTimingOut));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(device.WaitUntil([](const auto& c) { return c.stepsAnswered >= 6; }));
    ASSERT_EQ(camera->StopGrab(false), 0);

    // The first frame counts from 0; the restart wraps around as an unsigned difference. Frame 12
    // comes after a publication, which allows the next gap message.
    EXPECT_TRUE(log.Contains("Info", "The frame id increment is not 1, pre id = 0, current id = 10"));
    EXPECT_TRUE(log.Contains("Info", "The frame id increment is not 1, pre id = 12, current id = 3"));
    EXPECT_EQ(log.Count("The frame id increment is not 1"), 2u);
}

TEST_F(CameraAcquisitionTest, FrameLimitOfOneStopsAfterTheFirstRead)
{
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, 1), 0);

    ASSERT_TRUE(StoppedByItself(camera));
    EXPECT_EQ(device.Counters().lastFrameLimit, 1u);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), "1");
    ASSERT_TRUE(WaitUntil([&] { return log.Count("Stop grab image...") == 1; }));
    EXPECT_EQ(host.DeviceLists().back().key, cameraKey);
    EXPECT_EQ(device.Counters().stopGrabbings, 1u);
    EXPECT_LE(host.ImagesWithPicture(), 1u);
    ASSERT_TRUE(WaitUntil([&] { return !host.Images().empty() && !host.Images().back().withImage; }));
    ExpectEveryImageReleasedOnce();
}

// The failed read shows in the frame count, but only a frame the device sent reaches the limit.
TEST_F(CameraAcquisitionTest, FrameLimitCountsNeitherAFailedReadNorATimeout)
{
    device.SetFrameScript(FrameScript::Empty().Add(FrameStep::Timeout()).Add(FrameStep::Code(-5)).AddFrames(1, 5));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, 1), 0);

    ASSERT_TRUE(StoppedByItself(camera));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), "2");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ERROR_COUNT), "1");
    EXPECT_EQ(device.Counters().imagesHandedOut, 1u);
}

TEST_F(CameraAcquisitionTest, FrameLimitOfFiveTakesFiveFrames)
{
    device.SetFrameScript(FrameScript().Period(5ms));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, 5), 0);

    ASSERT_TRUE(StoppedByItself(camera));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), "5");
    EXPECT_EQ(device.Counters().imagesHandedOut, 5u);
    EXPECT_LE(host.ImagesWithPicture(), 5u);
    ASSERT_TRUE(WaitUntil([&] { return device.Counters().ImagesOutstanding() == 0; }));

    // The threads wait for the next start.
    ASSERT_EQ(camera->StartGrab(0, 5), 0);
    ASSERT_TRUE(StoppedByItself(camera));
    EXPECT_EQ(device.Counters().imagesHandedOut, 10u);
}

TEST_F(CameraAcquisitionTest, BandwidthFollowsFrameSizeAndRate)
{
    device.SetFrameScript(FrameScript::Empty().Add(FrameStep::Frame(1, 1000, 500, Scripted::PFNC_RGB8)).Period(20ms));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(WaitUntil([&] { return std::stod(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT)) >= 20; }));
    ASSERT_TRUE(WaitUntil([&] { return std::stod(camera->GetInfo(ViewerBiz3::CAM_DISPLAY_RATE)) > 0; }));

    const double rate = std::stod(camera->GetInfo(ViewerBiz3::CAM_FRAME_RATE));
    const double bandwidth = std::stod(camera->GetInfo(ViewerBiz3::CAM_BANDWIDTH));
    const double displayRate = std::stod(camera->GetInfo(ViewerBiz3::CAM_DISPLAY_RATE));
    ASSERT_GT(rate, 0);
    // Frames come at most every 20 ms: six of them span at least 119 ms on the millisecond clock.
    EXPECT_LE(rate, 6 * 1000.0 / 119);
    // 1000 x 500 RGB8 is 1.5 MB a frame: 12 Mbit.
    EXPECT_NEAR(bandwidth / rate, 12.0, 0.01);
    EXPECT_LE(displayRate, rate + 0.001);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_RATE).find('.') + 4,
              camera->GetInfo(ViewerBiz3::CAM_FRAME_RATE).size());

    // Every publication goes to the camera key, flagged as coming from acquisition.
    for (const auto& event : host.Statistics()) {
        EXPECT_EQ(event.key, cameraKey);
        EXPECT_FALSE(event.flag);
    }
    ASSERT_EQ(camera->StopGrab(false), 0);
}

TEST_F(CameraAcquisitionTest, StatisticsArePublishedAtMostEveryPeriod)
{
    device.SetFrameScript(FrameScript().Period(2ms));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(WaitUntil([&] { return std::stod(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT)) >= 100; }));
    ASSERT_EQ(camera->StopGrab(false), 0);

    // Hundreds of frames, yet only a publication per 300 ms (plus the one at the start).
    const uint64_t frames = device.Counters().imagesHandedOut;
    EXPECT_LT(host.Statistics().size() * 10, frames);
}

TEST_F(CameraAcquisitionTest, DeliveriesAreAtLeastThirtyMillisecondsApart)
{
    device.SetFrameScript(FrameScript().Period(1ms));
    std::vector<std::chrono::steady_clock::time_point> arrivals;
    std::mutex arrivalsMutex;
    host.SetImageObserver([&](ZYLGENICAM::IImage*) {
        std::lock_guard<std::mutex> lock(arrivalsMutex);
        arrivals.push_back(std::chrono::steady_clock::now());
    });
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() >= 6; }));
    ASSERT_EQ(camera->StopGrab(false), 0);

    // Each delivery round lasts at least 30 ms, counted from the end of the previous round
    // (millisecond clock: allow 1 ms a round).
    std::lock_guard<std::mutex> lock(arrivalsMutex);
    ASSERT_GE(arrivals.size(), 6u);
    const auto rounds = static_cast<int>(arrivals.size()) - 2;
    EXPECT_GE(arrivals.back() - arrivals.front(), rounds * 29ms);
    // Far more frames came than were shown: the rest were dropped and released.
    EXPECT_GT(device.Counters().imagesHandedOut, host.ImagesWithPicture());
    ExpectEveryImageReleasedOnce();
}

TEST_F(CameraAcquisitionTest, SlowHostSeesOnlyTheNewestFramesAndNothingLeaks)
{
    device.SetFrameScript(FrameScript().Period(3ms));
    host.SetImageHoldTime(80ms);
    InspectableCamera* camera = OpenedCamera();
    std::atomic<std::size_t> mostWaiting{0};
    std::atomic<bool> sampling{true};
    std::thread sampler([&] {
        while (sampling.load()) {
            mostWaiting.store(std::max(mostWaiting.load(), camera->WaitingImages()));
            std::this_thread::sleep_for(1ms);
        }
    });

    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() >= 5; }));
    ASSERT_EQ(camera->StopGrab(false), 0);
    sampling.store(false);
    sampler.join();

    EXPECT_LE(mostWaiting.load(), 2u);
    EXPECT_GT(device.Counters().imagesHandedOut, 4 * host.ImagesWithPicture());
    ExpectEveryImageReleasedOnce();
    ASSERT_EQ(camera->CloseCamera(false), 0);
    ExpectEveryImageReleasedOnce();
}

TEST_F(CameraAcquisitionTest, WithoutHostFramesAreReleasedInsteadOfDelivered)
{
    SetCameraHost(nullptr);
    device.SetFrameScript(FrameScript().Period(5ms));
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(device.WaitUntil([](const auto& c) { return c.imagesHandedOut >= 10; }));
    ASSERT_EQ(camera->StopGrab(true), 0);

    EXPECT_TRUE(host.Images().empty());
    EXPECT_TRUE(host.Statistics().empty());
    ExpectEveryImageReleasedOnce();
}

TEST_F(CameraAcquisitionTest, CloseWhileGrabbingStopsEverything)
{
    device.SetFrameScript(FrameScript().Period(5ms));
    host.SetImageHoldTime(20ms);
    Camera* camera = OpenedCamera();
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() >= 2; }));

    ASSERT_EQ(camera->CloseCamera(true), 0);

    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_GRABBING), "0");
    const std::size_t imagesAtClose = host.Images().size();
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(host.Images().size(), imagesAtClose);
    EXPECT_EQ(device.Counters().stopGrabbings, 1u);
    EXPECT_EQ(device.Counters().closes, 1u);
    ExpectEveryImageReleasedOnce();
}

TEST_F(CameraAcquisitionTest, HostThreadsMayStartStopAndCloseAtOnce)
{
    device.SetFrameScript(FrameScript().Period(2ms));
    host.SetImageHoldTime(5ms);
    Camera* camera = OpenedCamera();
    std::atomic<bool> go{false};
    std::vector<std::thread> hostThreads;
    for (int t = 0; t < 4; ++t) {
        hostThreads.emplace_back([&, t] {
            while (!go.load())
                std::this_thread::yield();
            for (int round = 0; round < 15; ++round) {
                if ((round + t) % 2 == 0)
                    camera->StartGrab(0, continuous);
                else
                    camera->StopGrab(round % 3 == 0);
                std::string value;
                camera->GetNodeValue("Width", value, true);
                camera->GetInfo(ViewerBiz3::CAM_FRAME_RATE);
                std::this_thread::sleep_for(std::chrono::milliseconds(3 * t));
            }
            if (t == 3)
                camera->CloseCamera(true);
        });
    }
    go.store(true);
    for (auto& thread : hostThreads)
        thread.join();
    camera->CloseCamera(false);

    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_OPENED), "0");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_GRABBING), "0");
    ExpectEveryImageReleasedOnce();
}

} // namespace
