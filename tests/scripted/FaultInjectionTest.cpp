// Each camera operation failing in the SDK in turn, seen through the exported
// functions: the host gets the SDK's code (or the library's), the camera is
// left in a state it can leave again (never half open), and every frame the
// SDK handed out goes back to it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ViewerBiz3.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/StressApiOperations.h"
#include "support/common/TempDirectory.h"
#include "support/scripted/ScriptedSdk.h"
#include "support/common/WaitUntil.h"

using namespace ViewerBiz3;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

const std::string CameraId = "Line3(A1)";

bool IsListed(const std::string& id)
{
    return !GetCameraInfo(id, CAM_NAME).empty();
}

bool IsOpened(const std::string& id)
{
    const auto ids = GetOpenedCameraIds();
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

// A recorder that keeps the frames it gets until told to let them go.
class HoldingViewer final : public IImageUpdate {
public:
    void OnImageUpdate(std::string, void* image, int, int) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (image != nullptr) {
            m_held.push_back(static_cast<ZYLGENICAM::IImage*>(image));
        }
    }
    std::size_t Held() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_held.size();
    }
    void ReleaseAll()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (ZYLGENICAM::IImage* image : m_held) {
            image->Release();
        }
        m_held.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<ZYLGENICAM::IImage*> m_held;
};

class FaultInjection : public ::testing::Test {
protected:
    FaultInjection() : camera(Scripted::OnlyDevice(Scripted::AreaCamera("A1", "Line3")))
    {
        camera.SetFrameScript(Scripted::FrameScript::Empty()
                                  .AddFrames(1, 10)
                                  .Then(Scripted::WhenExhausted::Repeat)
                                  .Period(std::chrono::milliseconds(5)));
    }

    ~FaultInjection() override
    {
        if (m_initialised) {
            UnInit();
        }
    }

    void StartLibrary()
    {
        m_initialised = true;
        ASSERT_EQ(-1, Init());
        m_applicationDirectory = std::make_unique<ApplicationDirectoryScope>(m_directory.Path());
        Utilities::StartLogFile(m_directory.Path(), 1 << 20);
        ASSERT_EQ(0, RegisterImageUpdateListener(CameraId, &sink));
    }

    void ListCamera()
    {
        StartLibrary();
        ASSERT_EQ(0, RefreshCameraList(ZYLGENICAM::TL_GIGE));
        ASSERT_TRUE(WaitUntil([] { return IsListed(CameraId); }));
    }

    void GrabSomeFrames()
    {
        const std::uint64_t before = sink.frames.load();
        ASSERT_EQ(0, StartGrab(CameraId));
        EXPECT_TRUE(WaitUntil([&] { return sink.frames.load() >= before + 3; }));
    }

    // Closed by the host, and every frame handed out went back to the SDK.
    void ExpectClosedAndReleased()
    {
        EXPECT_THAT(GetOpenedCameraIds(), IsEmpty());
        EXPECT_EQ("0", GetCameraInfo(CameraId, CAM_OPENED));
        EXPECT_TRUE(camera.WaitUntil([](const Scripted::DeviceCounters& c) { return c.ImagesOutstanding() == 0; }));
        EXPECT_EQ(0u, camera.Counters().doubleReleases);
    }

    Scripted::ScriptedDevice& camera;
    StressImageSink sink;
    bool m_initialised = false;
    TempDirectory m_directory;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
};

} // namespace

TEST_F(FaultInjection, AFailedOpenReturnsTheSdkCodeAndTheCameraOpensOnceItIsCleared)
{
    ListCamera();
    for (int code : {ZYLGENICAM::SDK_ERROR, ZYLGENICAM::SDK_ACCESS_DENIED}) {
        camera.SetResult(Scripted::SdkCall::Open, code);

        EXPECT_EQ(code, OpenCamera(CameraId));
        EXPECT_FALSE(IsOpened(CameraId));
        EXPECT_EQ("0", GetCameraInfo(CameraId, CAM_OPENED));
        EXPECT_EQ(-1, StartGrab(CameraId)) << "a camera that failed to open cannot grab";
    }

    camera.SetResult(Scripted::SdkCall::Open, ZYLGENICAM::SDK_OK);
    EXPECT_EQ(0, OpenCamera(CameraId));
    EXPECT_TRUE(IsOpened(CameraId));
    EXPECT_EQ(0, CloseCamera(CameraId));
}

TEST_F(FaultInjection, AMissingFeatureNodeMapClosesTheSdkHandleAgainAndAnswersMinusTwo)
{
    ListCamera();
    camera.SetModuleMissing(3, true);

    EXPECT_EQ(-2, OpenCamera(CameraId));
    EXPECT_FALSE(IsOpened(CameraId));
    EXPECT_EQ(1u, camera.Counters().closes) << "the handle opened in the SDK is closed again";
    std::string width = "untouched";
    EXPECT_NE(0, GetCameraNodeValue(CameraId, "Width", width));
    EXPECT_EQ("untouched", width);

    camera.SetModuleMissing(3, false);
    EXPECT_EQ(0, OpenCamera(CameraId));
    EXPECT_EQ(0, GetCameraNodeValue(CameraId, "Width", width));
    EXPECT_EQ(0, CloseCamera(CameraId));
}

TEST_F(FaultInjection, AFailedStartReturnsTheSdkCodeAndTheCameraStaysOpenAndStartsLater)
{
    ListCamera();
    ASSERT_EQ(0, OpenCamera(CameraId));
    camera.SetResult(Scripted::SdkCall::StartGrabbing, ZYLGENICAM::SDK_ERROR);

    EXPECT_EQ(ZYLGENICAM::SDK_ERROR, StartGrab(CameraId));
    EXPECT_EQ("0", GetCameraInfo(CameraId, CAM_GRABBING));
    EXPECT_TRUE(IsOpened(CameraId));
    EXPECT_EQ(0u, camera.Counters().getImageCalls) << "no grab thread reads a stream that did not start";

    camera.SetResult(Scripted::SdkCall::StartGrabbing, ZYLGENICAM::SDK_OK);
    GrabSomeFrames();
    EXPECT_EQ(0, StopGrab(CameraId));
    EXPECT_EQ(0, CloseCamera(CameraId));
    ExpectClosedAndReleased();
}

TEST_F(FaultInjection, ReadErrorsAndIncompleteFramesDoNotStopTheGrab)
{
    camera.SetFrameScript(Scripted::FrameScript::Empty()
                              .AddFrames(1, 3)
                              .Add(Scripted::FrameStep::Code(ZYLGENICAM::SDK_ERROR))
                              .Add(Scripted::FrameStep::Code(ZYLGENICAM::SDK_ERROR).WithImage())
                              .Add(Scripted::FrameStep::Code(ZYLGENICAM::SDK_TIMEOUT))
                              .Add(Scripted::FrameStep::Frame(4).Invalid())
                              .Then(Scripted::WhenExhausted::Repeat)
                              .Period(std::chrono::milliseconds(2)));
    ListCamera();
    ASSERT_EQ(0, OpenCamera(CameraId));

    ASSERT_EQ(0, StartGrab(CameraId));
    EXPECT_TRUE(camera.WaitUntil([](const Scripted::DeviceCounters& c) { return c.stepsAnswered >= 50; }))
        << "the grab thread goes on reading after errors";
    EXPECT_EQ("1", GetCameraInfo(CameraId, CAM_GRABBING));
    EXPECT_EQ(0, StopGrab(CameraId));
    EXPECT_EQ(0, CloseCamera(CameraId));

    ExpectClosedAndReleased();
    EXPECT_GT(sink.frames.load(), 0u);
}

// A frame goes back to the SDK once every image listener released it: at once with none, only
// after the slowest with two.
TEST_F(FaultInjection, AFrameGoesBackAfterTheLastOfItsListenersReleasedIt)
{
    ListCamera();
    ASSERT_EQ(0, OpenCamera(CameraId));
    HoldingViewer recorder;
    ASSERT_EQ(0, RegisterImageUpdateListener(CameraId, &recorder));
    GrabSomeFrames();
    EXPECT_EQ(0, StopGrab(CameraId));
    EXPECT_EQ(recorder.Held(), camera.Counters().ImagesOutstanding()) << "the live view's release is not the last";
    recorder.ReleaseAll();
    EXPECT_EQ(0u, camera.Counters().ImagesOutstanding());

    ASSERT_EQ(0, UnRegisterImageUpdateListener(CameraId, &recorder));
    ASSERT_EQ(0, UnRegisterImageUpdateListener(CameraId, &sink));
    const std::uint64_t handedOut = camera.Counters().imagesHandedOut;
    ASSERT_EQ(0, StartGrab(CameraId));
    EXPECT_TRUE(
        camera.WaitUntil([&](const Scripted::DeviceCounters& c) { return c.imagesHandedOut >= handedOut + 20; }));
    EXPECT_LE(camera.Counters().ImagesOutstanding(), 3u) << "with nobody watching, frames go back at once";
    EXPECT_EQ(0, CloseCamera(CameraId));
    ExpectClosedAndReleased();
}

TEST_F(FaultInjection, AFailedStopStillEndsTheGrabForTheHostAndCloseRecovers)
{
    ListCamera();
    ASSERT_EQ(0, OpenCamera(CameraId));
    GrabSomeFrames();
    camera.SetResult(Scripted::SdkCall::StopGrabbing, ZYLGENICAM::SDK_ERROR);

    EXPECT_EQ(0, StopGrab(CameraId));
    EXPECT_EQ("0", GetCameraInfo(CameraId, CAM_GRABBING));
    EXPECT_EQ(0, CloseCamera(CameraId));
    ExpectClosedAndReleased();

    camera.SetResult(Scripted::SdkCall::StopGrabbing, ZYLGENICAM::SDK_OK);
    ASSERT_EQ(0, OpenCamera(CameraId));
    GrabSomeFrames();
    EXPECT_EQ(0, StopGrab(CameraId));
    EXPECT_EQ(0, CloseCamera(CameraId));
    ExpectClosedAndReleased();
}

TEST_F(FaultInjection, AFailedCloseStillClosesTheCameraForTheHost)
{
    ListCamera();
    ASSERT_EQ(0, OpenCamera(CameraId));
    GrabSomeFrames();
    camera.SetResult(Scripted::SdkCall::Close, ZYLGENICAM::SDK_ERROR);

    EXPECT_EQ(0, CloseCamera(CameraId));

    ExpectClosedAndReleased();
    EXPECT_EQ(-1, StartGrab(CameraId));
}

TEST_F(FaultInjection, ACameraWithoutSdkHandleIsListedButDoesNotOpen)
{
    camera.SetCreateCameraFails(true);
    ListCamera();

    EXPECT_EQ(-1, OpenCamera(CameraId));
    EXPECT_FALSE(IsOpened(CameraId));
    EXPECT_EQ(0u, camera.Counters().opens);
}

TEST_F(FaultInjection, AnEmptyDiscoveryEmptiesTheListAndTheCameraComesBackWithTheDevice)
{
    ListCamera();
    camera.SetPresent(false);
    ASSERT_EQ(0, RefreshCameraList(ZYLGENICAM::TL_GIGE));
    EXPECT_TRUE(WaitUntil([] { return !IsListed(CameraId); }));
    EXPECT_EQ(-1, OpenCamera(CameraId));

    camera.SetPresent(true);
    ASSERT_EQ(0, RefreshCameraList(ZYLGENICAM::TL_GIGE));
    ASSERT_TRUE(WaitUntil([] { return IsListed(CameraId); }));
    EXPECT_EQ(0, OpenCamera(CameraId));
    EXPECT_EQ(0, CloseCamera(CameraId));
}

TEST_F(FaultInjection, ALostCameraIsRemovedOnceAndItsReplacementOpens)
{
    StressListener logger;
    ListCamera();
    ASSERT_EQ(0, RegisterLoggerUpdateListener(&logger));
    ASSERT_EQ(0, OpenCamera(CameraId));
    GrabSomeFrames();

    const std::uint64_t readsBefore = camera.Counters().getImageCalls;
    const auto lostAt = std::chrono::steady_clock::now();
    camera.Lose();
    camera.SetPresent(false);

    EXPECT_TRUE(WaitUntil([] { return !IsOpened(CameraId); })) << "the loss is noticed";
    EXPECT_LT(std::chrono::steady_clock::now() - lostAt, std::chrono::milliseconds(1200)) << "handled at once";
    EXPECT_LT(camera.Counters().getImageCalls - readsBefore, 10u) << "a device that is gone is not read in a spin";
    EXPECT_TRUE(camera.WaitUntil([](const Scripted::DeviceCounters& c) { return c.ImagesOutstanding() == 0; }));
    EXPECT_TRUE(WaitUntil([&] { return logger.lossLines.load() >= 1; }));

    Scripted::ScriptedDevice& replacement =
        Scripted::ScriptedSdk::Instance().AddDevice(Scripted::AreaCamera("A1", "Line3"));
    ASSERT_EQ(0, RefreshCameraList(ZYLGENICAM::TL_GIGE));
    ASSERT_TRUE(WaitUntil([] { return IsListed(CameraId) && GetCameraInfo(CameraId, CAM_OPENED) == "0"; }));
    EXPECT_EQ(0, OpenCamera(CameraId));
    EXPECT_EQ(1u, replacement.Counters().opens);
    EXPECT_EQ(0, CloseCamera(CameraId));
    EXPECT_EQ(1u, logger.lossLines.load()) << "\"Camera is lost.\" is logged once, also by later watchdog rounds";
}
