// The profile camera: opening with its device settings, the three image modes, profile
// counting, limited batch acquisition and delivery with mode and scaler.
#include <gtest/gtest.h>

#include <memory>

#include "camera/LPCamera.h"
#include "node/NodeAccess.h"
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

const std::string serialNumber = "F100";
const std::string cameraKey = "Profile(F100)";

// The document with one feature's declaration replaced.
std::string WithFeatureReplaced(std::string xml, const std::string& featureKind, const std::string& featureName,
                                const std::string& replacement)
{
    const std::size_t begin = xml.find("<" + featureKind + " Name=\"" + featureName + "\"");
    const std::string closing = "</" + featureKind + ">";
    const std::size_t end = xml.find(closing, begin);
    EXPECT_NE(end, std::string::npos) << featureName;
    if (begin == std::string::npos || end == std::string::npos)
        return xml;
    return xml.replace(begin, end + closing.size() - begin, replacement);
}

std::string ProfileXmlWith(const std::string& featureKind, const std::string& featureName,
                           const std::string& replacement)
{
    return WithFeatureReplaced(Scripted::ProfileCameraXml(), featureKind, featureName, replacement);
}

std::string IntegerFeature(const std::string& name, const std::string& value, const std::string& min,
                           const std::string& extra = "")
{
    return "<Integer Name=\"" + name + "\" NameSpace=\"Custom\">" + extra + "<Value>" + value + "</Value><Min>" + min +
           "</Min><Max>1000000</Max><Inc>1</Inc></Integer>";
}

Scripted::DeviceDescription ProfileDevice(const std::string& moduleXml = "")
{
    Scripted::DeviceDescription description = Scripted::ProfileCamera(serialNumber, "Profile");
    if (!moduleXml.empty())
        description.moduleXml[3] = moduleXml;
    return description;
}

FrameStep ProfileFrame(uint64_t frameId, std::vector<uint64_t> chunkSizes)
{
    return FrameStep::Frame(frameId, 3200, 1, Scripted::PFNC_COORD3D_C16).Chunks(std::move(chunkSizes));
}

class LPCameraTest : public ::testing::Test {
protected:
    CameraLogRecorder log;
    CameraTestHost host;
    Scripted::ScriptedDevice* device = nullptr;

    LPCamera* OpenedCamera(Scripted::DeviceDescription description = ProfileDevice())
    {
        device = &Scripted::OnlyDevice(std::move(description));
        auto camera = std::make_unique<LPCamera>(CreateCameraHandle(~0ull, serialNumber));
        camera->SetName(cameraKey);
        camera->SetKey(cameraKey);
        LPCamera* raw = host.Adopt(std::move(camera));
        EXPECT_EQ(raw->OpenCamera(1), 0);
        return raw;
    }

    std::string DeviceValue(const std::string& node)
    {
        std::string value;
        std::string message;
        EXPECT_EQ(Utilities::GetNodeValue(device->NodeMap(3), node, value, message), 0) << node << message;
        return value;
    }

    void SetDeviceValue(const std::string& node, const std::string& value)
    {
        std::string message;
        ASSERT_EQ(Utilities::SetNodeValue(device->NodeMap(3), node, value, message), 0) << node << message;
    }

    std::string Switches()
    {
        return DeviceValue("EnableExtraction") + DeviceValue("EnableImage") + DeviceValue("EnableCalibration") +
               DeviceValue("BatchEnable");
    }

    uint64_t FramesAfterScript(LPCamera* camera, FrameScript script, uint64_t steps)
    {
        device->SetFrameScript(std::move(script));
        const uint64_t callsBefore = device->Counters().getImageCalls;
        EXPECT_EQ(camera->StartGrab(0, 4294967295ull), 0);
        // The timeout after the last frame publishes the final count.
        EXPECT_TRUE(device->WaitUntil([&](const auto& c) { return c.getImageCalls >= callsBefore + steps + 2; }));
        EXPECT_EQ(camera->StopGrab(false), 0);
        return std::stoull(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT));
    }
};

TEST_F(LPCameraTest, OpenReadsTheProfileSettingsOfTheDevice)
{
    LPCamera* camera = OpenedCamera();

    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_KIND), "1");
    EXPECT_EQ(camera->GetCameraImageMode(), 0);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_Z_UP_SIZE), "12.500000");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_Z_DOWN_SIZE), "-12.500000");
    // 128.0 / 3200
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_CONTOUR_SPACER), "0.040000");
    EXPECT_EQ(DeviceValue("CenterImageY"), "Off");
}

TEST_F(LPCameraTest, ImageModesRoundTripThroughTheSwitches)
{
    LPCamera* camera = OpenedCamera();
    const std::vector<std::pair<int, std::string>> expectedSwitches = {{1, "1010"}, {2, "1011"}, {0, "1100"}};

    for (const auto& [mode, switches] : expectedSwitches) {
        ASSERT_EQ(camera->SetCameraImageMode(mode), 0);
        EXPECT_EQ(Switches(), switches);
        EXPECT_EQ(camera->GetCameraImageMode(), mode);
        ASSERT_EQ(camera->SetCameraImageMode(7), -1);
        camera->GetGrabMode();
        EXPECT_EQ(camera->GetCameraImageMode(), mode);
    }

    EXPECT_EQ(camera->SetCameraImageMode(3), -1);
    EXPECT_EQ(camera->GetCameraImageMode(), 3);
    EXPECT_EQ(Switches(), "1100");
}

TEST_F(LPCameraTest, RefusedSwitchWriteLeavesTheModeUnchanged)
{
    LPCamera* camera = OpenedCamera(ProfileDevice(
        ProfileXmlWith("Integer", "EnableCalibration",
                       IntegerFeature("EnableCalibration", "0", "0", "<ImposedAccessMode>RO</ImposedAccessMode>"))));
    ASSERT_EQ(camera->GetCameraImageMode(), 0);

    EXPECT_NE(camera->SetCameraImageMode(1), 0);
    EXPECT_EQ(camera->GetCameraImageMode(), 0);
    EXPECT_EQ(log.Count("Failed to SetNodeValue. nodeName = EnableCalibration"), 1u);
    // The writes before the refused one stay on the device.
    EXPECT_EQ(DeviceValue("EnableImage"), "0");
}

TEST_F(LPCameraTest, BooleanSwitchesAreUnderstood)
{
    std::string xml = Scripted::ProfileCameraXml();
    const std::map<std::string, std::string> values = {
        {"EnableExtraction", "1"}, {"EnableImage", "0"}, {"EnableCalibration", "1"}, {"BatchEnable", "1"}};
    for (const auto& [name, value] : values) {
        xml = WithFeatureReplaced(xml, "Integer", name,
                                  "<Boolean Name=\"" + name + "\" NameSpace=\"Custom\"><Value>" + value +
                                      "</Value><OnValue>1</OnValue><OffValue>0</OffValue></Boolean>");
    }
    LPCamera* camera = OpenedCamera(ProfileDevice(xml));
    ASSERT_EQ(DeviceValue("BatchEnable"), "True");

    EXPECT_EQ(camera->GetCameraImageMode(), 2);
    ASSERT_EQ(camera->SetCameraImageMode(1), 0);
    EXPECT_EQ(Switches(), "TrueFalseTrueFalse");
    camera->GetGrabMode();
    EXPECT_EQ(camera->GetCameraImageMode(), 1);
}

TEST_F(LPCameraTest, BatchFramesCountTheirProfilesByDepth)
{
    LPCamera* camera = OpenedCamera();
    ASSERT_EQ(camera->SetCameraImageMode(2), 0);
    auto fiveBatches = [] {
        FrameScript script = FrameScript::Empty();
        for (uint64_t id = 1; id <= 5; ++id)
            script.Add(ProfileFrame(id, {64, 64000}));
        return script.Then(WhenExhausted::KeepTimingOut);
    };

    // 64 000 bytes are 10 profiles of 16 bits or 5 of 32 bits.
    EXPECT_EQ(FramesAfterScript(camera, fiveBatches(), 5), 50u);
    SetDeviceValue("DepthDataType", "Depth32");
    EXPECT_EQ(FramesAfterScript(camera, fiveBatches(), 5), 25u);
    EXPECT_EQ(device->Counters().ImagesOutstanding(), 0u);
}

TEST_F(LPCameraTest, FramesWithFewerThanTwoChunksCarryNoProfile)
{
    LPCamera* camera = OpenedCamera();
    auto frames = [](std::vector<uint64_t> chunks) {
        return FrameScript::Empty()
            .Add(ProfileFrame(1, chunks))
            .Add(ProfileFrame(2, chunks))
            .Then(WhenExhausted::KeepTimingOut);
    };

    ASSERT_EQ(camera->SetCameraImageMode(1), 0);
    EXPECT_EQ(FramesAfterScript(camera, frames({6400, 6400}), 2), 2u);
    EXPECT_EQ(FramesAfterScript(camera, frames({6400}), 2), 0u);
    ASSERT_EQ(camera->SetCameraImageMode(2), 0);
    EXPECT_EQ(FramesAfterScript(camera, frames({}), 2), 0u);
}

TEST_F(LPCameraTest, LimitedBatchAcquisitionStopsAfterItsFrames)
{
    LPCamera* camera = OpenedCamera();
    ASSERT_EQ(camera->SetCameraImageMode(2), 0);
    ASSERT_EQ(DeviceValue("AcquisitionLineCount"), "1000");
    ASSERT_EQ(DeviceValue("BatchNumber"), "100");
    ASSERT_EQ(camera->SetInfo(ViewerBiz3::CAM_ACQ_LIMIT, "1"), 0);
    FrameScript script = FrameScript::Empty().Period(5ms);
    for (uint64_t id = 1; id <= 30; ++id)
        script.Add(ProfileFrame(id, {64, 640000}));
    device->SetFrameScript(script.Then(WhenExhausted::KeepTimingOut));

    ASSERT_EQ(camera->StartGrab(0, 4294967295ull), 0);

    ASSERT_TRUE(WaitUntil([&] { return log.Contains("Info", "Stop grab image..."); }));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_GRABBING), "0");
    EXPECT_EQ(host.ImagesWithPicture(), 10u);
    EXPECT_EQ(device->Counters().stopGrabbings, 1u);
    // The switch is reset once the grab thread is parked again.
    EXPECT_TRUE(WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_ACQ_LIMIT) == "0"; }));
    EXPECT_TRUE(WaitUntil([&] { return device->Counters().ImagesOutstanding() == 0; }));
    EXPECT_EQ(device->Counters().doubleReleases, 0u);
}

TEST_F(LPCameraTest, ZeroBatchNumberStopsALimitedAcquisitionAtOnce)
{
    LPCamera* camera =
        OpenedCamera(ProfileDevice(ProfileXmlWith("Integer", "BatchNumber", IntegerFeature("BatchNumber", "0", "0"))));
    ASSERT_EQ(camera->SetCameraImageMode(2), 0);
    ASSERT_EQ(camera->SetInfo(ViewerBiz3::CAM_ACQ_LIMIT, "1"), 0);
    device->SetFrameScript(FrameScript::Empty().Add(ProfileFrame(1, {64, 6400})).Period(5ms));

    ASSERT_EQ(camera->StartGrab(0, 4294967295ull), 0);

    ASSERT_TRUE(WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_GRABBING) == "0"; }));
    EXPECT_TRUE(WaitUntil([&] { return device->Counters().ImagesOutstanding() == 0; }));
}

TEST_F(LPCameraTest, DeliveryCarriesModeAndScaler)
{
    LPCamera* camera = OpenedCamera();
    SetDeviceValue("Scaler", "1000");
    SetDeviceValue("OffsetY", "12");
    device->SetFrameScript(FrameScript().Period(10ms));

    ASSERT_EQ(camera->StartGrab(0, 4294967295ull), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() >= 2; }));
    ASSERT_EQ(camera->StopGrab(false), 0);

    ASSERT_TRUE(WaitUntil([&] { return !host.Images().back().withImage; }));
    const auto images = host.Images();
    EXPECT_EQ(images.front().extra1, 0);
    EXPECT_EQ(images.front().extra2, 1000);
    EXPECT_EQ(images.back().extra1, 0);
    EXPECT_EQ(images.back().extra2, 0);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_OFFSET_Y), "12");
}

TEST_F(LPCameraTest, OfflineCameraReleasesInsteadOfDelivering)
{
    LPCamera* camera = OpenedCamera();
    camera->SetOnline(false);
    device->SetFrameScript(FrameScript().Period(5ms));

    ASSERT_EQ(camera->StartGrab(0, 4294967295ull), 0);
    ASSERT_TRUE(device->WaitUntil([](const auto& c) { return c.imagesReleased >= 10; }));
    ASSERT_EQ(camera->StopGrab(false), 0);

    EXPECT_EQ(host.ImagesWithPicture(), 0u);
    EXPECT_EQ(device->Counters().ImagesOutstanding(), 0u);
    EXPECT_EQ(device->Counters().doubleReleases, 0u);
}

TEST_F(LPCameraTest, TimeoutCodesAreNotErrorsButFailuresAre)
{
    LPCamera* camera = OpenedCamera();
    device->SetFrameScript(FrameScript::Empty()
                               .AddFrames(1, 2, 3200, 1, Scripted::PFNC_COORD3D_C16)
                               .Add(FrameStep::Code(-12))
                               .Add(FrameStep::Code(-11))
                               .Add(FrameStep::Code(-5))
                               .AddFrames(5, 1, 3200, 1, Scripted::PFNC_COORD3D_C16)
                               .Then(WhenExhausted::KeepTimingOut));

    ASSERT_EQ(camera->StartGrab(0, 4294967295ull), 0);
    ASSERT_TRUE(WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT) == "3"; }));
    ASSERT_EQ(camera->StopGrab(false), 0);

    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ERROR_COUNT), "1");
    EXPECT_TRUE(log.Contains("Error", "Failed to get image, errorcode = -5, frameId = 2"));
    EXPECT_TRUE(log.Contains("Info", "The frame id increment wrong, pre id = 2, current id = 5"));
}

TEST_F(LPCameraTest, SingleProfileModeSkipsTheFrameIdCheck)
{
    LPCamera* camera = OpenedCamera();
    ASSERT_EQ(camera->SetCameraImageMode(1), 0);
    EXPECT_EQ(FramesAfterScript(camera,
                                FrameScript::Empty()
                                    .Add(ProfileFrame(1, {64, 6400}))
                                    .Add(ProfileFrame(9, {64, 6400}))
                                    .Then(WhenExhausted::KeepTimingOut),
                                2),
              2u);
    EXPECT_EQ(log.Count("The frame id increment wrong"), 0u);
}

TEST_F(LPCameraTest, UpgradeIsNotSupported)
{
    LPCamera camera(nullptr);
    int progress = -1;
    bool done = false;

    EXPECT_EQ(camera.FirmwareUpgrade("/tmp/firmware.bin", &progress, &done), -1);
    EXPECT_EQ(camera.CameraUpgrade("/tmp/firmware.bin", 0), -1);
    EXPECT_EQ(ExtractArchive("/tmp/a.zip", "/tmp/a"), 0);

    camera.updateProgressValue(3, 4);
    EXPECT_EQ(progress, 75);
    camera.updateProgressValue(1, 0);
    EXPECT_EQ(progress, 75);
    EXPECT_FALSE(done);
}

} // namespace
