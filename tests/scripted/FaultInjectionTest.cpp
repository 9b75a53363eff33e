// Each camera operation failing in the SDK in turn, seen through the exported
// functions: the host gets the SDK's code (or the library's), the camera is
// left in a state it can leave again (never half open), and every frame the
// SDK handed out goes back to it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ViewerBiz3.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/StressApiOperations.h"
#include "support/common/TempDirectory.h"
#include "support/scripted/ScriptedSdk.h"
#include "support/common/WaitUntil.h"

using namespace ViewerBiz3;
using Scripted::SdkCall;
using ::testing::IsEmpty;
namespace Sdk = ZYLGENICAM;

namespace {

const std::string CameraId = "Line3(A1)";

bool IsListed(const std::string& id)
{
    return !GetCameraInfo(id, CAM_NAME).empty();
}

// A viewer that keeps the frames it gets until told to let them go.
class HoldingViewer final : public IImageUpdate {
public:
    void OnImageUpdate(std::string, void* image, int, int) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (image != nullptr)
            m_held.push_back(static_cast<ZYLGENICAM::IImage*>(image));
    }
    std::size_t Held() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_held.size();
    }
    void ReleaseAll()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (ZYLGENICAM::IImage* image : m_held)
            image->Release();
        m_held.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<ZYLGENICAM::IImage*> m_held;
};

// What the host is answered by open, start grab, stop grab and close.
using Cycle = std::array<int, 4>;

class FaultInjection : public ::testing::Test {
protected:
    FaultInjection() : camera(Scripted::OnlyDevice(Scripted::AreaCamera("A1", "Line3")))
    {
        camera.SetFrameScript(Scripted::FrameScript::Empty()
                                  .AddFrames(1, 10)
                                  .Then(Scripted::WhenExhausted::Repeat)
                                  .Period(std::chrono::milliseconds(5)));
    }
    ~FaultInjection() override { UnInit(); }

    void ListCamera()
    {
        ASSERT_EQ(-1, Init());
        m_applicationDirectory = std::make_unique<ApplicationDirectoryScope>(m_directory.Path());
        Utilities::StartLogFile(m_directory.Path(), 1 << 20);
        ASSERT_EQ(0, RegisterImageUpdateListener(CameraId, &sink));
        ASSERT_EQ(0, RefreshCameraList(ZYLGENICAM::TL_GIGE));
        ASSERT_TRUE(WaitUntil([] { return IsListed(CameraId); }));
    }

    void GrabSomeFrames()
    {
        const std::uint64_t before = sink.frames.load();
        ASSERT_EQ(0, StartGrab(CameraId));
        EXPECT_TRUE(WaitUntil([&] { return sink.frames.load() >= before + 3; }));
    }

    // Open, grab some frames, stop and close, each step tried only if the one it needs worked.
    Cycle RunCycle()
    {
        Cycle result{OpenCamera(CameraId), -1, -1, -1};
        if (result[0] != 0)
            return result;
        const std::uint64_t before = sink.frames.load();
        result[1] = StartGrab(CameraId);
        if (result[1] == 0) {
            EXPECT_TRUE(WaitUntil([&] { return sink.frames.load() >= before + 3; }));
        }
        result[2] = StopGrab(CameraId);
        EXPECT_EQ("0", GetCameraInfo(CameraId, CAM_GRABBING));
        result[3] = CloseCamera(CameraId);
        return result;
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
    TempDirectory m_directory;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
};

struct FailingCall {
    SdkCall call;
    int code;
    Cycle answers;
};

class FailingSdkCall : public FaultInjection, public ::testing::WithParamInterface<FailingCall> {};

} // namespace

// A failed open or start hands the SDK's code to the host; a failed stop or close is
// hidden, the camera ends stopped and closed all the same.
TEST_P(FailingSdkCall, AnswersTheHostAndLeavesACameraThatWorksAgain)
{
    ListCamera();
    camera.SetResult(GetParam().call, GetParam().code);
    EXPECT_EQ(GetParam().answers, RunCycle());
    ExpectClosedAndReleased();
    if (GetParam().answers[1] != 0) {
        EXPECT_EQ(0u, camera.Counters().getImageCalls) << "no grab thread reads a stream that did not start";
    }

    if (GetParam().call == SdkCall::Close)
        return; // the SDK still holds the handle it refused to close
    camera.SetResult(GetParam().call, Sdk::SDK_OK);
    EXPECT_EQ((Cycle{0, 0, 0, 0}), RunCycle()) << "once the SDK recovers";
    EXPECT_EQ(-1, StopGrab(CameraId)) << "not grabbing";
    EXPECT_EQ(-1, CloseCamera(CameraId)) << "not open";
    ExpectClosedAndReleased();
}

INSTANTIATE_TEST_SUITE_P(
    EachCall, FailingSdkCall,
    ::testing::Values(FailingCall{SdkCall::Open, Sdk::SDK_ERROR, {Sdk::SDK_ERROR, -1, -1, -1}},
                      FailingCall{SdkCall::Open, Sdk::SDK_ACCESS_DENIED, {Sdk::SDK_ACCESS_DENIED, -1, -1, -1}},
                      FailingCall{SdkCall::StartGrabbing, Sdk::SDK_ERROR, {0, Sdk::SDK_ERROR, -1, 0}},
                      FailingCall{SdkCall::StopGrabbing, Sdk::SDK_ERROR, {0, 0, 0, 0}},
                      FailingCall{SdkCall::Close, Sdk::SDK_ERROR, {0, 0, 0, 0}}));

TEST_F(FaultInjection, AMissingFeatureNodeMapClosesTheSdkHandleAgainAndAnswersMinusTwo)
{
    ListCamera();
    camera.SetModuleMissing(3, true);

    EXPECT_EQ(-2, OpenCamera(CameraId));
    EXPECT_THAT(GetOpenedCameraIds(), IsEmpty());
    EXPECT_EQ(1u, camera.Counters().closes) << "the handle opened in the SDK is closed again";
    std::string width = "untouched";
    EXPECT_NE(0, GetCameraNodeValue(CameraId, "Width", width));
    EXPECT_EQ("untouched", width);

    camera.SetModuleMissing(3, false);
    EXPECT_EQ(0, OpenCamera(CameraId));
    EXPECT_EQ(0, GetCameraNodeValue(CameraId, "Width", width));
    EXPECT_EQ(0, CloseCamera(CameraId));
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

TEST_F(FaultInjection, ACameraWithoutSdkHandleIsListedButDoesNotOpen)
{
    camera.SetCreateCameraFails(true);
    ListCamera();

    EXPECT_EQ(-1, OpenCamera(CameraId));
    EXPECT_EQ(0u, camera.Counters().opens);
}

TEST_F(FaultInjection, ALostCameraIsRemovedOnceAndItsReplacementOpens)
{
    ListCamera();
    ASSERT_EQ(0, OpenCamera(CameraId));
    GrabSomeFrames();

    const std::uint64_t readsBefore = camera.Counters().getImageCalls;
    camera.Lose();
    camera.SetPresent(false);

    EXPECT_TRUE(WaitUntil([] { return GetOpenedCameraIds().empty() && !IsListed(CameraId); })) << "the loss is noticed";
    EXPECT_LT(camera.Counters().getImageCalls - readsBefore, 10u) << "a device that is gone is not read in a spin";
    EXPECT_TRUE(camera.WaitUntil([](const Scripted::DeviceCounters& c) { return c.ImagesOutstanding() == 0; }));

    Scripted::ScriptedDevice& replacement =
        Scripted::ScriptedSdk::Instance().AddDevice(Scripted::AreaCamera("A1", "Line3"));
    ASSERT_EQ(0, RefreshCameraList(ZYLGENICAM::TL_GIGE));
    ASSERT_TRUE(WaitUntil([] { return IsListed(CameraId) && GetCameraInfo(CameraId, CAM_OPENED) == "0"; }));
    EXPECT_TRUE(camera.WaitUntil([](const Scripted::DeviceCounters& c) {
        return c.camerasCreated == c.camerasDestroyed;
    })) << "the lost camera's object gives its handle back once a pass has run";
    EXPECT_EQ(0, OpenCamera(CameraId));
    EXPECT_EQ(1u, replacement.Counters().opens);
    EXPECT_EQ(0, CloseCamera(CameraId));
}
