// The Aravis camera SDK end to end on our in-process simulated cameras (transport type 8).
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "ZylSdk.h"
#include "genapi/GenApi.h"
#include "support/common/SdkCameraFeatures.h"

using namespace ZYLGENICAM;
using SdkCameraFeatures::Features;
using SdkCameraFeatures::Read;
using SdkCameraFeatures::Write;

namespace {

constexpr uint64_t kWaitMs = 2000;

class SdkSimulatedCameraTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "1", 1);
        ASSERT_EQ(Init(), SDK_OK);
    }

    void TearDown() override
    {
        for (ICamera* camera : m_cameras)
            camera->Destroy();
        UnInit();
        unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS");
    }

    // Identity of every record of one discovery, the records destroyed as the host does.
    struct Listed {
        int tlType;
        int accessStatus;
        std::string serial, model, userName, vendor, ip;
    };
    static std::vector<Listed> Discover(uint64_t mask)
    {
        std::vector<Listed> listed;
        for (ICameraInfo* info : DiscoveryByTLType(mask)) {
            listed.push_back({info->GetTLType(), info->GetAccessStatus(), info->GetSerialNumber(), info->GetModelName(),
                              info->GetUserDefinedName(), info->GetDeviceText(), info->GetGigEInfo(GIGE_IP)});
            info->Destroy();
        }
        return listed;
    }

    ICamera* CreateBySerial(const std::string& serial)
    {
        ICamera* created = SdkCameraFeatures::CreateBySerial(TL_SIMULATED, serial);
        if (created != nullptr)
            m_cameras.push_back(created);
        return created;
    }

    ICamera* OpenBySerial(const std::string& serial)
    {
        ICamera* camera = CreateBySerial(serial);
        EXPECT_NE(camera, nullptr);
        if (camera != nullptr) {
            EXPECT_EQ(camera->Open(0), SDK_OK);
        }
        return camera;
    }

    // A small fast stream, so many frames come quickly.
    static void MakeSmallAndFast(ICamera* camera)
    {
        Write(camera, "Width", "64");
        Write(camera, "Height", "48");
        Write(camera, "AcquisitionFrameRate", "1000");
    }

    std::vector<ICamera*> m_cameras;
};

TEST_F(SdkSimulatedCameraTest, DiscoveryListsOnlyTheSimulatedCamerasTheEnvironmentAsksFor)
{
    unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS");
    EXPECT_TRUE(Discover(TL_SIMULATED).empty());

    setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "area", 1);
    std::vector<Listed> area = Discover(TL_SIMULATED);
    ASSERT_EQ(area.size(), 1u);
    EXPECT_EQ(area[0].tlType, TL_SIMULATED);
    EXPECT_EQ(area[0].accessStatus, 2);
    EXPECT_EQ(area[0].serial, "SIM-AREA-01");
    EXPECT_EQ(area[0].model, "VB3-Sim-Area");
    EXPECT_EQ(area[0].userName, "SimArea");
    EXPECT_EQ(area[0].vendor, "ViewerBiz3");
    EXPECT_EQ(area[0].ip, "");

    setenv("VIEWERBIZ3_SIMULATED_CAMERAS", " showmode , profile,unknown", 1);
    std::vector<Listed> two = Discover(TL_SIMULATED | TL_CAMERALINK);
    ASSERT_EQ(two.size(), 2u);
    EXPECT_NE(two[0].model.find("QV-RM"), std::string::npos);
    EXPECT_EQ(two[1].serial.substr(0, 1), "F");

    setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "1", 1);
    EXPECT_EQ(Discover(TL_SIMULATED).size(), 3u);
    EXPECT_TRUE(Discover(0).empty());
}

TEST_F(SdkSimulatedCameraTest, OpenCameraOffersItsFeaturesAndARenameIsSeenByTheNextDiscovery)
{
    ICamera* camera = CreateBySerial("SIM-AREA-01");
    ASSERT_NE(camera, nullptr);
    EXPECT_FALSE(camera->IsOpen());
    EXPECT_EQ(camera->GetModule3(), nullptr);
    EXPECT_EQ(camera->GetDeviceInfo()->GetTLType(), TL_SIMULATED);

    ASSERT_EQ(camera->Open(0), SDK_OK);
    EXPECT_TRUE(camera->IsOpen());
    EXPECT_TRUE(camera->IsConnected());
    IModule* module = camera->GetModule3();
    ASSERT_NE(module, nullptr);
    ASSERT_NE(module->GetXML(), nullptr);
    EXPECT_NE(std::string(module->GetXML()).find("DeviceUserID"), std::string::npos);
    EXPECT_EQ(module->GetXMLSize(), std::strlen(module->GetXML()));

    EXPECT_EQ(Read(camera, "Width"), "640");
    Write(camera, "Width", "320");
    EXPECT_EQ(Read(camera, "Width"), "320");
    Write(camera, "PixelFormat", "Mono16");
    EXPECT_EQ(Read(camera, "PixelFormat"), "Mono16");
    EXPECT_EQ(Read(camera, "AcquisitionFrameCount"), "10");
    Write(camera, "AcquisitionMode", "MultiFrame");
    EXPECT_EQ(Read(camera, "AcquisitionMode"), "MultiFrame");

    Write(camera, "DeviceUserID", "Line3");
    std::vector<Listed> listed = Discover(TL_SIMULATED);
    ASSERT_FALSE(listed.empty());
    EXPECT_EQ(listed[0].userName, "Line3");
    EXPECT_EQ(listed[0].accessStatus, 3) << "an open device is busy for everyone else";

    ICamera* second = CreateBySerial("SIM-AREA-01");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->Open(0), SDK_ACCESS_DENIED);

    EXPECT_EQ(camera->Close(), SDK_OK);
    EXPECT_FALSE(camera->IsOpen());
    EXPECT_EQ(camera->GetModule3(), nullptr);
    EXPECT_EQ(camera->Close(), SDK_NOT_OPEN);
    EXPECT_EQ(second->Open(0), SDK_OK);
}

TEST_F(SdkSimulatedCameraTest, StreamsFramesPastThePoolWithIdsThatKeepCountingAcrossTheSixteenBitWrap)
{
    ICamera* camera = OpenBySerial("SIM-AREA-01");
    ASSERT_NE(camera, nullptr);
    MakeSmallAndFast(camera);
    IImage* image = nullptr;
    EXPECT_EQ(camera->GetImage(image, 10), SDK_ERROR) << "not grabbing";
    ASSERT_EQ(camera->StartGrabbing(0, 4294967295u), SDK_OK);
    EXPECT_TRUE(camera->IsGrabbing());
    EXPECT_EQ(camera->StartGrabbing(0, 1), SDK_ERROR);

    // The simulator's 16-bit ids start near 65535, so 300 frames cross the wrap to 1.
    uint64_t previous = 0;
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(camera->GetImage(image, kWaitMs), SDK_OK) << "frame " << i;
        ASSERT_NE(image, nullptr);
        EXPECT_TRUE(image->IsValid());
        EXPECT_EQ(image->GetWidth(), 64u);
        EXPECT_EQ(image->GetHeight(), 48u);
        EXPECT_EQ(image->GetPixelFormat(), 0x01080001u);
        EXPECT_EQ(image->GetDataSize(), 64u * 48u);
        EXPECT_NE(image->GetData(), nullptr);
        EXPECT_TRUE(image->GetChunkList().empty());
        EXPECT_GT(image->GetTimestamp(), 0u);
        if (previous != 0) {
            EXPECT_EQ(image->GetFrameId(), previous + 1);
        }
        previous = image->GetFrameId();
        image->Release();
    }
    EXPECT_GT(previous, 65535u);
    EXPECT_TRUE(camera->IsConnected());
    EXPECT_EQ(camera->StopGrabbing(), SDK_OK);
    EXPECT_FALSE(camera->IsGrabbing());
    EXPECT_EQ(camera->StopGrabbing(), SDK_ERROR);
}

TEST_F(SdkSimulatedCameraTest, HeldFramesEmptyThePoolUntilReleased)
{
    ICamera* camera = OpenBySerial("SIM-AREA-01");
    ASSERT_NE(camera, nullptr);
    MakeSmallAndFast(camera);
    ASSERT_NE(camera->GetModule4(), nullptr);
    GenApi::INodeMap* stream = camera->GetModule4()->GetNodeMap();
    auto counter = [stream](const char* name) { return GenApi::CIntegerPtr(stream->GetNode(name))->GetValue(); };
    GenApi::CIntegerPtr bufferCount = stream->GetNode("StreamBufferCount");
    bufferCount->SetValue(1);
    EXPECT_EQ(bufferCount->GetValue(), 1) << "one buffer is the smallest pool";
    bufferCount->SetValue(4);
    ASSERT_EQ(camera->StartGrabbing(0, NO_FRAME_LIMIT), SDK_OK);
    std::vector<IImage*> held;
    IImage* image = nullptr;
    int result = camera->GetImage(image, kWaitMs);
    while (result == SDK_OK) {
        held.push_back(image);
        result = camera->GetImage(image, 300);
    }
    EXPECT_EQ(result, SDK_TIMEOUT);
    EXPECT_EQ(image, nullptr);
    ASSERT_EQ(held.size(), 4u) << "the pool holds the buffer count module 4 asked for";
    EXPECT_GE(counter("StreamCompletedBuffers"), 4);
    EXPECT_GT(counter("StreamUnderrunBuffers"), 0) << "frames came while every buffer was held";
    EXPECT_EQ(counter("StreamFailedBuffers"), 0);
    held.back()->Release();
    held.pop_back();
    EXPECT_EQ(camera->GetImage(image, kWaitMs), SDK_OK);
    held.push_back(image);
    for (IImage* frame : held)
        frame->Release();
}

TEST_F(SdkSimulatedCameraTest, FramesStayValidAfterStopAndAfterTheCameraIsGone)
{
    ICamera* camera = OpenBySerial("SIM-AREA-01");
    ASSERT_NE(camera, nullptr);
    MakeSmallAndFast(camera);
    ASSERT_EQ(camera->StartGrabbing(0, 4294967295u), SDK_OK);
    IImage* first = nullptr;
    IImage* second = nullptr;
    ASSERT_EQ(camera->GetImage(first, kWaitMs), SDK_OK);
    ASSERT_EQ(camera->GetImage(second, kWaitMs), SDK_OK);
    ASSERT_EQ(camera->StopGrabbing(), SDK_OK);
    const auto* pixels = static_cast<const uint8_t*>(first->GetData());
    uint64_t sum = 0;
    for (uint64_t i = 0; i < first->GetDataSize(); ++i)
        sum += pixels[i];
    EXPECT_GT(sum, 0u);
    first->Release();

    // A new acquisition gets a fresh pool while the old frame is still out.
    ASSERT_EQ(camera->StartGrabbing(0, 4294967295u), SDK_OK);
    IImage* third = nullptr;
    ASSERT_EQ(camera->GetImage(third, kWaitMs), SDK_OK);
    m_cameras.clear();
    camera->Destroy();
    EXPECT_EQ(second->GetWidth(), 64u);
    second->Release();
    third->Release();
}

TEST_F(SdkSimulatedCameraTest, ShowModeFramesCarryTheImageAndAnInformationChunk)
{
    ICamera* camera = OpenBySerial("SIM-SL-01");
    ASSERT_NE(camera, nullptr);
    MakeSmallAndFast(camera);
    ASSERT_EQ(camera->StartGrabbing(0, 4294967295u), SDK_OK);
    IImage* image = nullptr;
    ASSERT_EQ(camera->GetImage(image, kWaitMs), SDK_OK);
    std::list<IChunk*> chunks = image->GetChunkList();
    ASSERT_EQ(chunks.size(), 2u);
    EXPECT_EQ(chunks.front()->GetChunkSize(), 64u * 48u);
    EXPECT_EQ(chunks.front()->GetChunkData(), image->GetData());
    EXPECT_EQ(image->GetDataSize(), 64u * 48u);
    EXPECT_EQ(chunks.back()->GetChunkSize(), 32u);
    EXPECT_NE(chunks.front()->GetChunkId(), chunks.back()->GetChunkId());
    image->Release();
}

TEST_F(SdkSimulatedCameraTest, ProfileCameraSendsProfilesAsTheSecondChunkInItsCalibratedModes)
{
    ICamera* camera = OpenBySerial("F-SIM-01");
    ASSERT_NE(camera, nullptr);
    EXPECT_EQ(Read(camera, "ZUpSizeInfo"), "12");
    EXPECT_EQ(Read(camera, "ZDownSizeInfo"), "-12");
    EXPECT_EQ(Read(camera, "OutlineLengthMax"), "3200");
    EXPECT_EQ(Read(camera, "CenterImageY"), "On");
    Write(camera, "CenterImageY", "Off");
    EXPECT_EQ(Read(camera, "CenterImageY"), "Off");
    EXPECT_NE(Read(camera, "DepthDataType").find("16"), std::string::npos);
    Write(camera, "AcquisitionFrameRate", "500");

    auto secondChunkOfNextFrame = [&](uint64_t& chunkCount) {
        EXPECT_EQ(camera->StartGrabbing(0, 4294967295u), SDK_OK);
        IImage* image = nullptr;
        EXPECT_EQ(camera->GetImage(image, kWaitMs), SDK_OK);
        uint64_t size = 0;
        chunkCount = 0;
        if (image != nullptr) {
            std::list<IChunk*> chunks = image->GetChunkList();
            chunkCount = chunks.size();
            size = chunks.size() >= 2 ? (*std::next(chunks.begin()))->GetChunkSize() : image->GetDataSize();
            image->Release();
        }
        EXPECT_EQ(camera->StopGrabbing(), SDK_OK);
        return size;
    };
    uint64_t chunks = 0;
    EXPECT_EQ(secondChunkOfNextFrame(chunks), 6400u) << "mode 1: one 16-bit profile per frame";
    EXPECT_GE(chunks, 2u);

    Write(camera, "BatchEnable", "1");
    Write(camera, "BatchNumber", "100");
    EXPECT_EQ(secondChunkOfNextFrame(chunks), 100u * 6400u) << "mode 2: a batch of profiles";

    Write(camera, "DepthDataType", "Depth32Bit");
    EXPECT_EQ(secondChunkOfNextFrame(chunks), 100u * 12800u);

    Write(camera, "EnableImage", "1");
    Write(camera, "EnableCalibration", "0");
    EXPECT_EQ(secondChunkOfNextFrame(chunks), 3200u * 32u * 2u) << "mode 0: a 16-bit image, no chunks";
    EXPECT_EQ(chunks, 0u);
}

} // namespace
