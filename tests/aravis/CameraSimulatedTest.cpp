// Cameras end to end on the real SDK: our simulated area, show-mode and profile cameras on
// Aravis's in-process fake device open, grab, deliver images to the host, stop and close.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "ZylSdk.h"
#include "camera/Camera.h"
#include "camera/LPCamera.h"
#include "camera/SLCamera.h"
#include "support/common/CameraHandles.h"
#include "support/common/CameraLogRecorder.h"
#include "support/common/CameraTestHost.h"

namespace {

constexpr unsigned long long continuous = 4294967295ull;

class CameraSimulatedTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "1", 1);
        ASSERT_EQ(ZYLGENICAM::Init(), ZYLGENICAM::SDK_OK);
        host = std::make_unique<CameraTestHost>();
    }

    void TearDown() override
    {
        // The host deletes its cameras, which destroy their handles before the SDK stops.
        host.reset();
        ZYLGENICAM::UnInit();
        unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS");
    }

    template <typename CameraType>
    CameraType* SimulatedCamera(const std::string& serialNumber, uint16_t kind)
    {
        ZYLGENICAM::ICamera* handle = CreateCameraHandle(ZYLGENICAM::TL_SIMULATED, serialNumber);
        EXPECT_NE(handle, nullptr) << serialNumber;
        if (!handle)
            return nullptr;
        auto camera = std::make_unique<CameraType>(handle);
        camera->SetName("Sim(" + serialNumber + ")");
        camera->SetKey("Sim(" + serialNumber + ")");
        camera->SetKind(kind);
        return host->Adopt(std::move(camera));
    }

    // Opens, grabs until the host has seen some images and the statistics moved, stops, closes.
    void GrabSomeImages(Camera* camera)
    {
        ASSERT_EQ(camera->OpenCamera(1), 0);
        ASSERT_EQ(camera->StartGrab(0, continuous), 0);
        ASSERT_TRUE(CameraTestHost::WaitUntil([&] { return host->ImagesWithPicture() >= 3; }));
        ASSERT_TRUE(CameraTestHost::WaitUntil(
            [&] { return std::stod(camera->GetInfo(ViewerBiz3::CAM_FRAME_RATE)) > 0; }));
        EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_ERROR_COUNT), "0");
        EXPECT_GT(std::stod(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT)), 0);
        ASSERT_EQ(camera->StopGrab(true), 0);
        ASSERT_TRUE(CameraTestHost::WaitUntil([&] { return !host->Images().back().withImage; }));
        EXPECT_EQ(camera->CloseCamera(true), 0);
        EXPECT_TRUE(log.Contains("Info", "Close camera success!"));
    }

    CameraLogRecorder log;
    std::unique_ptr<CameraTestHost> host;
};

TEST_F(CameraSimulatedTest, AreaCameraStreamsToTheHost)
{
    Camera* camera = SimulatedCamera<Camera>("SIM-AREA-01", 0);
    ASSERT_NE(camera, nullptr);
    GrabSomeImages(camera);
    // Closing resets the statistics.
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), "0");
}

TEST_F(CameraSimulatedTest, AreaCameraReportsBandwidthAndAFrameLimit)
{
    Camera* camera = SimulatedCamera<Camera>("SIM-AREA-01", 0);
    ASSERT_NE(camera, nullptr);
    ASSERT_EQ(camera->OpenCamera(1), 0);
    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(CameraTestHost::WaitUntil([&] { return std::stod(camera->GetInfo(ViewerBiz3::CAM_BANDWIDTH)) > 0; }));
    ASSERT_EQ(camera->StopGrab(false), 0);

    ASSERT_EQ(camera->StartGrab(0, 3), 0);
    ASSERT_TRUE(CameraTestHost::WaitUntil([&] { return log.Count("Stop grab image...") == 1; }));
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT), "3");
}

TEST_F(CameraSimulatedTest, ShowModeCameraStreamsToTheHost)
{
    SLCamera* camera = SimulatedCamera<SLCamera>("SIM-SL-01", 5);
    ASSERT_NE(camera, nullptr);
    GrabSomeImages(camera);
}

TEST_F(CameraSimulatedTest, ProfileCameraStreamsProfilesWithModeAndScaler)
{
    LPCamera* camera = SimulatedCamera<LPCamera>("F-SIM-01", 1);
    ASSERT_NE(camera, nullptr);
    ASSERT_EQ(camera->OpenCamera(1), 0);
    EXPECT_NE(camera->GetInfo(ViewerBiz3::CAM_Z_UP_SIZE), "");
    ASSERT_EQ(camera->SetCameraImageMode(1), 0);
    camera->GetGrabMode();
    EXPECT_EQ(camera->GetCameraImageMode(), 1);

    ASSERT_EQ(camera->StartGrab(0, continuous), 0);
    ASSERT_TRUE(CameraTestHost::WaitUntil([&] { return host->ImagesWithPicture() >= 3; }));
    ASSERT_TRUE(CameraTestHost::WaitUntil([&] { return std::stod(camera->GetInfo(ViewerBiz3::CAM_FRAME_COUNT)) > 0; }));
    ASSERT_EQ(camera->StopGrab(false), 0);
    const auto images = host->Images();
    EXPECT_EQ(images.front().extra1, 1);
    std::string scaler;
    ASSERT_EQ(camera->GetNodeValue("Scaler", scaler, true), 0);
    EXPECT_EQ(images.front().extra2, std::stoi(scaler));
    EXPECT_EQ(camera->CloseCamera(true), 0);
}

} // namespace
