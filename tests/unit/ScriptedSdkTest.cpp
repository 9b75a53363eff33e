// The scripted SDK that the fault tests stand on: discovery, frame scripts, image accounting, loss.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "genapi/GenApi.h"
#include "support/scripted/ScriptedSdk.h"

using namespace Scripted;
using ZYLGENICAM::ICamera;
using ZYLGENICAM::ICameraInfo;
using ZYLGENICAM::IImage;

namespace {

std::vector<std::string> SerialsOf(const std::list<ICameraInfo*>& records) {
    std::vector<std::string> serials;
    for (ICameraInfo* record : records) {
        serials.push_back(record->GetSerialNumber());
        record->Destroy();
    }
    return serials;
}

// A grabbing handle on the first device the mask finds.
ICamera* OpenAndGrab(uint64_t mask, uint64_t frameLimit = ZYLGENICAM::NO_FRAME_LIMIT) {
    std::list<ICameraInfo*> records = ZYLGENICAM::DiscoveryByTLType(mask);
    ICamera* camera = ZYLGENICAM::CreateCamera(records.front());
    for (ICameraInfo* record : records) {
        record->Destroy();
    }
    EXPECT_EQ(camera->Open(0), ZYLGENICAM::SDK_OK);
    EXPECT_EQ(camera->StartGrabbing(0, frameLimit), ZYLGENICAM::SDK_OK);
    return camera;
}

struct Read {
    int code;
    uint64_t frameId;  // 0 without image
};

Read ReadOne(ICamera* camera, uint64_t timeoutMs = 50) {
    IImage* image = nullptr;
    const int code = camera->GetImage(image, timeoutMs);
    const uint64_t frameId = image != nullptr ? image->GetFrameId() : 0;
    if (image != nullptr) {
        image->Release();
    }
    return {code, frameId};
}

// The registry is process-wide; start each case from an empty one even when cases share a process.
class ScriptedSdkTest : public testing::Test {
protected:
    void SetUp() override { ScriptedSdk::Instance().Reset(); }
};

} // namespace

TEST_F(ScriptedSdkTest, DiscoveryListsPresentDevicesOfTheMaskInOrder) {
    auto& sdk = ScriptedSdk::Instance();
    ScriptedDevice& gige = sdk.AddDevice(AreaCamera("G1", "Left"));
    sdk.AddDevice(AreaCamera("U1", "", ZYLGENICAM::TL_USB));
    sdk.AddDevice(ProfileCamera("F1", "", ZYLGENICAM::TL_SIMULATED));
    sdk.AddDevice(FrameGrabberCard("Card0"));

    EXPECT_EQ(SerialsOf(ZYLGENICAM::DiscoveryByTLType(1)), std::vector<std::string>({"G1"}));
    EXPECT_EQ(SerialsOf(ZYLGENICAM::DiscoveryByTLType(11)), std::vector<std::string>({"G1", "U1", "F1"}));
    EXPECT_EQ(SerialsOf(ZYLGENICAM::DiscoveryCLCards()), std::vector<std::string>({"Card0"}));

    gige.SetPresent(false);
    EXPECT_EQ(SerialsOf(ZYLGENICAM::DiscoveryByTLType(15)), std::vector<std::string>({"U1", "F1"}));
    gige.SetPresent(true);
    EXPECT_EQ(gige.Counters().recordsCreated, 2u);
    EXPECT_EQ(gige.Counters().recordsDestroyed, 2u);
}

TEST_F(ScriptedSdkTest, RecordsReportIdentityAndARenameThroughTheNodeMap) {
    ScriptedDevice& device = ScriptedSdk::Instance().AddDevice(AreaCamera("G1", "Left"));
    ICameraInfo* record = ZYLGENICAM::DiscoveryByTLType(1).front();
    EXPECT_STREQ(record->GetUserDefinedName(), "Left");
    EXPECT_STREQ(record->GetGigEInfo(ZYLGENICAM::GIGE_HOST_INTERFACE_IP), "169.254.10.1");
    EXPECT_STREQ(record->GetCLInfo(ZYLGENICAM::CL_CARD_KEY), "");
    record->Destroy();

    GenApi::CStringPtr userId = device.NodeMap()->GetNode("DeviceUserID");
    userId->SetValue("Right");
    ICameraInfo* renamed = ZYLGENICAM::DiscoveryByTLType(1).front();
    EXPECT_STREQ(renamed->GetUserDefinedName(), "Right");
    renamed->Destroy();
}

TEST_F(ScriptedSdkTest, FrameScriptIsAnsweredInOrderThenTimesOut) {
    ScriptedDevice& device = ScriptedSdk::Instance().AddDevice(AreaCamera("G1"));
    device.SetFrameScript(FrameScript::Empty()
                              .AddFrames(1, 2)
                              .Add(FrameStep::Timeout())
                              .Add(FrameStep::Code(-7))
                              .Add(FrameStep::Frame(9, 32, 2).Invalid().Chunks({10, 20}))
                              .Then(WhenExhausted::KeepTimingOut));
    ICamera* camera = OpenAndGrab(1);

    EXPECT_EQ(ReadOne(camera).frameId, 1u);
    EXPECT_EQ(ReadOne(camera).frameId, 2u);
    EXPECT_EQ(ReadOne(camera).code, ZYLGENICAM::SDK_TIMEOUT);
    EXPECT_EQ(ReadOne(camera).code, -7);
    IImage* image = nullptr;
    ASSERT_EQ(camera->GetImage(image, 50), ZYLGENICAM::SDK_OK);
    EXPECT_FALSE(image->IsValid());
    EXPECT_EQ(image->GetDataSize(), 64u);
    std::list<ZYLGENICAM::IChunk*> chunks = image->GetChunkList();
    ASSERT_EQ(chunks.size(), 2u);
    EXPECT_EQ(chunks.back()->GetChunkSize(), 20u);
    image->Release();
    EXPECT_EQ(ReadOne(camera).code, ZYLGENICAM::SDK_TIMEOUT);
    EXPECT_EQ(device.Counters().stepsAnswered, 6u);
}

TEST_F(ScriptedSdkTest, RepeatedScriptKeepsIdsRisingAndFrameLimitEndsFrames) {
    ScriptedSdk::Instance().AddDevice(AreaCamera("G1")).SetFrameScript(FrameScript::Empty().AddFrames(1, 2));
    ICamera* camera = OpenAndGrab(1, 3);
    EXPECT_EQ(ReadOne(camera).frameId, 1u);
    EXPECT_EQ(ReadOne(camera).frameId, 2u);
    EXPECT_EQ(ReadOne(camera).frameId, 3u);
    EXPECT_EQ(ReadOne(camera).code, ZYLGENICAM::SDK_TIMEOUT);
}

TEST_F(ScriptedSdkTest, ReleasesAreCountedAndASecondReleaseFailsTheTest) {
    ScriptedDevice& device = ScriptedSdk::Instance().AddDevice(AreaCamera("G1"));
    ICamera* camera = OpenAndGrab(1);
    IImage* kept = nullptr;
    ASSERT_EQ(camera->GetImage(kept, 50), ZYLGENICAM::SDK_OK);
    ReadOne(camera);
    EXPECT_EQ(device.Counters().ImagesOutstanding(), 1u);

    kept->Release();
    testing::TestPartResultArray failures;
    {
        testing::ScopedFakeTestPartResultReporter intercept(&failures);
        kept->Release();
        kept->GetFrameId();
    }
    EXPECT_EQ(failures.size(), 2);
    const DeviceCounters counters = device.Counters();
    EXPECT_EQ(counters.imagesHandedOut, 2u);
    EXPECT_EQ(counters.imagesReleased, 2u);
    EXPECT_EQ(counters.doubleReleases, 1u);
    EXPECT_EQ(counters.imageUsesAfterRelease, 1u);
}

TEST_F(ScriptedSdkTest, LossAtAStepDisconnectsTheDevice) {
    ScriptedSdk::Instance().AddDevice(AreaCamera("G1")).SetFrameScript(FrameScript().LoseDeviceAtStep(2));
    ICamera* camera = OpenAndGrab(1);
    EXPECT_EQ(ReadOne(camera).code, ZYLGENICAM::SDK_OK);
    EXPECT_EQ(ReadOne(camera).code, ZYLGENICAM::SDK_OK);
    EXPECT_TRUE(camera->IsConnected());
    EXPECT_EQ(ReadOne(camera).code, ZYLGENICAM::SDK_LOST);
    EXPECT_FALSE(camera->IsConnected());
    EXPECT_EQ(ReadOne(camera).code, ZYLGENICAM::SDK_LOST);
}

TEST_F(ScriptedSdkTest, StopGrabbingEndsAWaitingRead) {
    ScriptedDevice& device = ScriptedSdk::Instance().AddDevice(AreaCamera("G1"));
    device.SetFrameScript(FrameScript::Empty().Add(FrameStep::Timeout()));
    ICamera* camera = OpenAndGrab(1);
    const auto started = std::chrono::steady_clock::now();
    auto read = std::async(std::launch::async, [camera] { return ReadOne(camera, 60000).code; });
    ASSERT_TRUE(device.WaitUntil([](const DeviceCounters& c) { return c.getImageCalls == 1; }));
    EXPECT_EQ(camera->StopGrabbing(), ZYLGENICAM::SDK_OK);
    EXPECT_EQ(read.get(), ZYLGENICAM::SDK_TIMEOUT);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(60));
    EXPECT_EQ(device.Counters().stepsAnswered, 0u);
}

TEST_F(ScriptedSdkTest, GrabThreadHostThreadAndCounterReadsRunTogether) {
    ScriptedDevice& device = ScriptedSdk::Instance().AddDevice(AreaCamera("G1"));
    device.SetFrameScript(FrameScript().Period(std::chrono::milliseconds(1)));
    ICamera* camera = OpenAndGrab(1);
    std::atomic<bool> done{false};
    std::thread grab([&] {
        while (!done) {
            ReadOne(camera, 300);
        }
    });
    for (int round = 0; round < 10; ++round) {
        const uint64_t target = device.Counters().imagesReleased + 3;
        ASSERT_TRUE(device.WaitUntil([target](const DeviceCounters& c) { return c.imagesReleased >= target; }));
        EXPECT_EQ(camera->StopGrabbing(), ZYLGENICAM::SDK_OK);
        EXPECT_EQ(camera->StartGrabbing(0, 4294967295u), ZYLGENICAM::SDK_OK);
    }
    done = true;
    grab.join();
    EXPECT_EQ(device.Counters().ImagesOutstanding(), 0u);
}

TEST_F(ScriptedSdkTest, ScriptedRefusalsAndRecordedCalls) {
    ScriptedDevice& device = ScriptedSdk::Instance().AddDevice(CameraLinkCamera("CL1", "Card0"));
    device.SetResult(SdkCall::Open, ZYLGENICAM::SDK_ACCESS_DENIED);
    device.SetModuleMissing(3, true);
    ICameraInfo* record = ZYLGENICAM::DiscoveryCLCameras().front();
    EXPECT_STREQ(record->GetCLInfo(ZYLGENICAM::CL_CARD_KEY), "Card0");
    ICamera* camera = ZYLGENICAM::CreateCamera(record);
    record->Destroy();

    EXPECT_EQ(camera->Open(1), ZYLGENICAM::SDK_ACCESS_DENIED);
    EXPECT_EQ(camera->GetModule3(), nullptr);
    EXPECT_NE(camera->GetModule2(), nullptr);
    EXPECT_EQ(camera->SetCLProtocol(nullptr, nullptr), ZYLGENICAM::SDK_OK);
    EXPECT_EQ(ZYLGENICAM::SetCameraIP("CL1", "10.0.0.2", "255.0.0.0", "10.0.0.1", true), 0);
    camera->Destroy();

    const DeviceCounters counters = device.Counters();
    EXPECT_EQ(counters.opens, 1u);
    ASSERT_EQ(counters.clProtocolCalls.size(), 1u);
    EXPECT_TRUE(counters.clProtocolCalls[0].unbind);
    ASSERT_EQ(counters.cameraIPCalls.size(), 1u);
    EXPECT_EQ(counters.cameraIPCalls[0].gateway, "10.0.0.1");
    EXPECT_EQ(counters.camerasDestroyed, 1u);
    device.SetCreateCameraFails(true);
    ICameraInfo* again = ZYLGENICAM::DiscoveryCLCameras().front();
    EXPECT_EQ(ZYLGENICAM::CreateCamera(again), nullptr);
    again->Destroy();
}
