// The Aravis camera SDK on our in-process simulated cameras (transport type 8): what the library
// relies on below the exported functions, and what a host session cannot see.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "ZylSdk.h"
#include "genapi/GenApi.h"
#include "support/common/SdkCameraFeatures.h"

using namespace ZYLGENICAM;

namespace {

constexpr uint64_t kWaitMs = 2000;
using FrameChunks = std::pair<size_t, uint64_t>;

class SdkSimulatedCameraTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "1", 1);
        ASSERT_EQ(Init(), SDK_OK);
    }

    void TearDown() override
    {
        if (m_camera != nullptr)
            m_camera->Destroy();
        UnInit();
        unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS");
    }

    // Opened, with a small fast stream when asked, so that many frames come quickly.
    void Open(const std::string& serial, bool smallAndFast = true)
    {
        m_camera = SdkCameraFeatures::CreateBySerial(TL_SIMULATED, serial);
        ASSERT_NE(m_camera, nullptr) << serial;
        ASSERT_EQ(m_camera->Open(0), SDK_OK) << serial;
        if (smallAndFast) {
            Write("Width", "64");
            Write("Height", "48");
            Write("AcquisitionFrameRate", "1000");
        }
    }

    GenApi::CValuePtr Feature(const char* name) { return m_camera->GetModule3()->GetNodeMap()->GetNode(name); }
    void Write(const char* name, const char* text) { Feature(name)->FromString(text); }

    // The chunk count of the next frame and the size of what it carries after the image: its
    // second chunk, or without chunks the image itself.
    FrameChunks NextFrameChunks()
    {
        EXPECT_EQ(m_camera->StartGrabbing(0, NO_FRAME_LIMIT), SDK_OK);
        IImage* image = nullptr;
        FrameChunks found{0, 0};
        if (m_camera->GetImage(image, kWaitMs) == SDK_OK) {
            const std::list<IChunk*> chunks = image->GetChunkList();
            EXPECT_TRUE(chunks.empty() || chunks.front()->GetChunkData() == image->GetData()) << "the image first";
            found = {chunks.size(),
                     chunks.size() >= 2 ? (*std::next(chunks.begin()))->GetChunkSize() : image->GetDataSize()};
            image->Release();
        }
        EXPECT_EQ(m_camera->StopGrabbing(), SDK_OK);
        return found;
    }

    ICamera* m_camera = nullptr;
};

TEST_F(SdkSimulatedCameraTest, DiscoveryListsOnlyTheSimulatedCamerasTheEnvironmentAsksFor)
{
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {"", {}}, // unset, as for every real host
        {"area", {"SIM-AREA-01"}},
        {" showmode , profile,unknown", {"SIM-SL-01", "F-SIM-01"}},
        {"1", {"SIM-AREA-01", "SIM-SL-01", "F-SIM-01"}},
    };
    for (const auto& [environment, serials] : cases) {
        environment.empty() ? unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS")
                            : setenv("VIEWERBIZ3_SIMULATED_CAMERAS", environment.c_str(), 1);
        std::vector<std::string> listed;
        for (ICameraInfo* info : DiscoveryByTLType(TL_SIMULATED | TL_CAMERALINK)) {
            listed.push_back(info->GetSerialNumber());
            info->Destroy();
        }
        EXPECT_EQ(listed, serials) << environment;
    }
}

TEST_F(SdkSimulatedCameraTest, FramesCountAcrossTheSixteenBitWrapAndOutliveTheStopAndTheCamera)
{
    ASSERT_NO_FATAL_FAILURE(Open("SIM-AREA-01"));
    IImage* image = nullptr;
    EXPECT_EQ(m_camera->GetImage(image, 10), SDK_ERROR) << "not grabbing";
    ASSERT_EQ(m_camera->StartGrabbing(0, NO_FRAME_LIMIT), SDK_OK);

    // The simulator's 16-bit ids start near 65535, so 300 frames cross the wrap to 1.
    uint64_t previous = 0;
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(m_camera->GetImage(image, kWaitMs), SDK_OK) << "frame " << i;
        EXPECT_EQ(image->GetDataSize(), 64u * 48u);
        EXPECT_TRUE(previous == 0 || image->GetFrameId() == previous + 1) << previous << ", " << image->GetFrameId();
        previous = image->GetFrameId();
        image->Release();
    }
    EXPECT_GT(previous, 65535u);

    IImage* kept = nullptr;
    ASSERT_EQ(m_camera->GetImage(kept, kWaitMs), SDK_OK);
    ASSERT_EQ(m_camera->StopGrabbing(), SDK_OK);
    // A new acquisition gets a fresh pool while the old frame is still out.
    ASSERT_EQ(m_camera->StartGrabbing(0, NO_FRAME_LIMIT), SDK_OK);
    ASSERT_EQ(m_camera->GetImage(image, kWaitMs), SDK_OK);
    m_camera->Destroy();
    m_camera = nullptr;
    const auto* pixels = static_cast<const uint8_t*>(kept->GetData());
    EXPECT_NE(std::vector<uint8_t>(pixels, pixels + kept->GetDataSize()), std::vector<uint8_t>(64 * 48, 0));
    kept->Release();
    image->Release();
}

TEST_F(SdkSimulatedCameraTest, HeldFramesEmptyThePoolUntilReleased)
{
    ASSERT_NO_FATAL_FAILURE(Open("SIM-AREA-01"));
    GenApi::INodeMap* stream = m_camera->GetModule4()->GetNodeMap();
    auto counter = [stream](const char* name) { return GenApi::CIntegerPtr(stream->GetNode(name))->GetValue(); };
    GenApi::CIntegerPtr bufferCount = stream->GetNode("StreamBufferCount");
    bufferCount->SetValue(1);
    EXPECT_EQ(bufferCount->GetValue(), 1) << "one buffer is the smallest pool";
    bufferCount->SetValue(4);
    ASSERT_EQ(m_camera->StartGrabbing(0, NO_FRAME_LIMIT), SDK_OK);
    std::vector<IImage*> held;
    IImage* image = nullptr;
    int result = m_camera->GetImage(image, kWaitMs);
    while (result == SDK_OK) {
        held.push_back(image);
        result = m_camera->GetImage(image, 300);
    }
    EXPECT_EQ(result, SDK_TIMEOUT);
    EXPECT_EQ(image, nullptr);
    ASSERT_EQ(held.size(), 4u) << "the pool holds the buffer count module 4 asked for";
    EXPECT_GE(counter("StreamCompletedBuffers"), 4);
    EXPECT_GT(counter("StreamUnderrunBuffers"), 0) << "frames came while every buffer was held";
    EXPECT_EQ(counter("StreamFailedBuffers"), 0);
    held.back()->Release();
    EXPECT_EQ(m_camera->GetImage(held.back(), kWaitMs), SDK_OK);
    for (IImage* frame : held)
        frame->Release();
}

TEST_F(SdkSimulatedCameraTest, ChunkCamerasSendTheImageThenInformationOrProfilesInTheirModes)
{
    ASSERT_NO_FATAL_FAILURE(Open("SIM-SL-01"));
    EXPECT_EQ(NextFrameChunks(), FrameChunks(2, 32)) << "show mode: a frame information chunk";
    m_camera->Destroy();
    ASSERT_NO_FATAL_FAILURE(Open("F-SIM-01", false));
    // On, unlike the host's wish, so that the host visibly switches it off.
    EXPECT_STREQ(Feature("CenterImageY")->ToString().c_str(), "On");
    Write("AcquisitionFrameRate", "500");

    EXPECT_EQ(NextFrameChunks(), FrameChunks(2, 6400)) << "mode 1: one 16-bit profile per frame";
    Write("BatchEnable", "1");
    Write("BatchNumber", "100");
    EXPECT_EQ(NextFrameChunks(), FrameChunks(2, 100 * 6400)) << "mode 2: a batch of profiles";
    Write("DepthDataType", "Depth32Bit");
    EXPECT_EQ(NextFrameChunks(), FrameChunks(2, 100 * 12800));
    Write("EnableImage", "1");
    Write("EnableCalibration", "0");
    EXPECT_EQ(NextFrameChunks(), FrameChunks(0, 3200 * 32 * 2)) << "mode 0: a 16-bit image";
}

} // namespace
