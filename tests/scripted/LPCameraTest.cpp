// The profile camera: opening with its device settings, the three image modes, profile
// counting, limited batch acquisition and delivery with mode and scaler.
#include <gtest/gtest.h>

#include "camera/LPCamera.h"
#include "node/NodeAccess.h"
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

// The profile camera's document with the declaration of one integer feature replaced.
std::string ProfileXmlWith(const std::string& feature, const std::string& replacement)
{
    const std::string closing = "</Integer>";
    std::string xml = Scripted::ProfileCameraXml();
    const std::size_t begin = xml.find("<Integer Name=\"" + feature + "\"");
    EXPECT_NE(begin, std::string::npos) << feature;
    return xml.replace(begin, xml.find(closing, begin) + closing.size() - begin, replacement);
}

std::string IntegerFeature(const std::string& name, const std::string& value, const std::string& extra = "")
{
    return "<Integer Name=\"" + name + "\" NameSpace=\"Custom\">" + extra + "<Value>" + value +
           "</Value><Min>0</Min><Max>1000000</Max><Inc>1</Inc></Integer>";
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

    LPCamera* OpenedCamera(const std::string& moduleXml = "")
    {
        Scripted::DeviceDescription description = Scripted::ProfileCamera(serialNumber, "Profile");
        if (!moduleXml.empty())
            description.moduleXml[3] = moduleXml;
        device = &Scripted::OnlyDevice(std::move(description));
        LPCamera* camera = host.AddCamera<LPCamera>(serialNumber, cameraKey);
        EXPECT_EQ(camera->OpenCamera(1), 0);
        return camera;
    }

    std::string DeviceValue(const std::string& node)
    {
        std::string value;
        std::string message;
        EXPECT_EQ(Utilities::GetNodeValue(device->NodeMap(3), node, value, message), 0) << node << message;
        return value;
    }

    std::string Switches()
    {
        return DeviceValue("EnableExtraction") + DeviceValue("EnableImage") + DeviceValue("EnableCalibration") +
               DeviceValue("BatchEnable");
    }
};

TEST_F(LPCameraTest, OpenReadsTheDeviceSettingsAndImageModesRoundTripThroughTheSwitches)
{
    // Some devices model a switch as a boolean, which reads as "True" or "False".
    LPCamera* camera = OpenedCamera(ProfileXmlWith(
        "BatchEnable", "<Boolean Name=\"BatchEnable\" NameSpace=\"Custom\"><Value>1</Value><OnValue>1</OnValue>"
                       "<OffValue>0</OffValue></Boolean>"));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_Z_UP_SIZE), "12.500000");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_Z_DOWN_SIZE), "-12.500000");
    // 128.0 / 3200
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_CONTOUR_SPACER), "0.040000");
    EXPECT_EQ(DeviceValue("CenterImageY"), "Off");
    EXPECT_EQ(camera->GetCameraImageMode(), 0);

    const std::vector<std::pair<int, std::string>> expectedSwitches = {
        {1, "101False"}, {2, "101True"}, {0, "110False"}};
    for (const auto& [mode, switches] : expectedSwitches) {
        ASSERT_EQ(camera->SetCameraImageMode(mode), 0);
        EXPECT_EQ(Switches(), switches);
        ASSERT_EQ(camera->SetCameraImageMode(7), -1);
        camera->GetGrabMode();
        EXPECT_EQ(camera->GetCameraImageMode(), mode);
    }
    EXPECT_EQ(camera->SetCameraImageMode(3), -1);
    EXPECT_EQ(camera->GetCameraImageMode(), 3);
    EXPECT_EQ(Switches(), "110False");
}

TEST_F(LPCameraTest, RefusedSwitchWriteLeavesTheModeUnchanged)
{
    LPCamera* camera = OpenedCamera(ProfileXmlWith(
        "EnableCalibration", IntegerFeature("EnableCalibration", "0", "<ImposedAccessMode>RO</ImposedAccessMode>")));

    EXPECT_NE(camera->SetCameraImageMode(1), 0);
    EXPECT_EQ(camera->GetCameraImageMode(), 0);
    EXPECT_EQ(log.Count("Failed to SetNodeValue. nodeName = EnableCalibration"), 1u);
    // The writes before the refused one stay on the device.
    EXPECT_EQ(DeviceValue("EnableImage"), "0");
}

// Per image mode, depth and chunks: the profiles two frames count for, and whether the gap
// between their ids is reported.
struct ProfileCountCase {
    int mode;
    const char* depth;
    std::vector<uint64_t> chunks;
    uint64_t profiles;
    std::size_t gapLines;
};

class ProfileCountTest : public LPCameraTest, public ::testing::WithParamInterface<ProfileCountCase> {};

// The profile devices' -12 is a timeout like -11; a failed read counts as an error only.
TEST_P(ProfileCountTest, FramesCountTheirProfilesAndOnlyFailuresAreErrors)
{
    LPCamera* camera = OpenedCamera();
    ASSERT_EQ(camera->SetCameraImageMode(GetParam().mode), 0);
    ASSERT_EQ(camera->SetNodeValue("DepthDataType", GetParam().depth, true), 0);
    device->SetFrameScript(FrameScript::Empty()
                               .Add(ProfileFrame(1, GetParam().chunks))
                               .Add(FrameStep::Code(-12))
                               .Add(FrameStep::Code(-11))
                               .Add(FrameStep::Code(-5))
                               .Add(ProfileFrame(3, GetParam().chunks))
                               .Then(WhenExhausted::KeepTimingOut));
    ASSERT_EQ(camera->StartGrab(0, continuousGrab), 0);
    // The five steps and the timeout after them (which publishes the final count) were read.
    ASSERT_TRUE(device->WaitUntil([](const auto& c) { return c.getImageCalls >= 7; }));
    ASSERT_EQ(camera->StopGrab(false), 0);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), std::to_string(GetParam().profiles));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ERROR_COUNT), "1");
    EXPECT_TRUE(log.Contains("Error", "Failed to get image, errorcode = -5, frameId = 1"));
    EXPECT_EQ(log.Count("The frame id increment wrong, pre id = 1, current id = 3"), GetParam().gapLines);
    EXPECT_EQ(device->Counters().ImagesOutstanding(), 0u);
}

// 64 000 bytes are 10 profiles of 16 bits or 5 of 32 bits; a profile frame needs two chunks.
INSTANTIATE_TEST_SUITE_P(
    ModesAndDepths, ProfileCountTest,
    ::testing::Values(ProfileCountCase{0, "Depth16", {}, 2, 1}, ProfileCountCase{2, "Depth16", {64, 64000}, 20, 1},
                      ProfileCountCase{2, "Depth32", {64, 64000}, 10, 1}, ProfileCountCase{2, "Depth16", {}, 0, 1},
                      ProfileCountCase{1, "Depth16", {6400, 6400}, 2, 0}, ProfileCountCase{1, "Depth16", {6400}, 0, 0}),
    [](const auto& info) {
        return "Mode" + std::to_string(info.param.mode) + "_" + info.param.depth + "_" +
               std::to_string(info.param.chunks.size()) + "Chunks";
    });

// Per batch number: the frames a limited batch acquisition of the device's 1000 lines delivers
// before it stops by itself. A batch number of 0 stops it at once.
class LimitedBatchTest : public LPCameraTest,
                         public ::testing::WithParamInterface<std::pair<const char*, std::size_t>> {};

TEST_P(LimitedBatchTest, StopsAfterItsFrames)
{
    LPCamera* camera = OpenedCamera(ProfileXmlWith("BatchNumber", IntegerFeature("BatchNumber", GetParam().first)));
    ASSERT_EQ(camera->SetCameraImageMode(2), 0);
    ASSERT_EQ(camera->SetInfo(ViewerBiz3::CAM_ACQ_LIMIT, "1"), 0);
    FrameScript script = FrameScript::Empty().Period(5ms);
    for (uint64_t id = 1; id <= 30; ++id)
        script.Add(ProfileFrame(id, {64, 640000}));
    device->SetFrameScript(script.Then(WhenExhausted::KeepTimingOut));

    ASSERT_EQ(camera->StartGrab(0, continuousGrab), 0);

    ASSERT_TRUE(WaitUntil([&] { return log.Contains("Info", "Stop grab image..."); }));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_GRABBING), "0");
    EXPECT_EQ(host.ImagesWithPicture(), GetParam().second);
    EXPECT_EQ(device->Counters().stopGrabbings, 1u);
    // The switch is reset once the grab thread is parked again.
    EXPECT_TRUE(WaitUntil([&] { return camera->GetInfo(ViewerBiz3::CAM_ACQ_LIMIT) == "0"; }));
    EXPECT_TRUE(WaitUntil([&] { return device->Counters().ImagesOutstanding() == 0; }));
}

INSTANTIATE_TEST_SUITE_P(BatchNumbers, LimitedBatchTest,
                         ::testing::Values(std::pair{"100", std::size_t{10}}, std::pair{"0", std::size_t{0}}),
                         [](const auto& info) { return std::string("BatchNumber") + info.param.first; });

TEST_F(LPCameraTest, DeliveryCarriesModeAndScaler)
{
    LPCamera* camera = OpenedCamera();
    ASSERT_EQ(camera->SetNodeValue("Scaler", "1000", true), 0);
    ASSERT_EQ(camera->SetNodeValue("OffsetY", "12", true), 0);
    device->SetFrameScript(FrameScript().Period(5ms));

    ASSERT_EQ(camera->StartGrab(0, continuousGrab), 0);
    ASSERT_TRUE(WaitUntil([&] { return host.ImagesWithPicture() >= 2; }));
    ASSERT_EQ(camera->StopGrab(false), 0);
    ASSERT_TRUE(WaitUntil([&] { return !host.Recorded().images.back().withImage; }));
    const auto images = host.Recorded().images;
    EXPECT_EQ(images.front().extra1, 0);
    EXPECT_EQ(images.front().extra2, 1000);
    EXPECT_EQ(images.back().extra2, 0);
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_OFFSET_Y), "12");
}

} // namespace
