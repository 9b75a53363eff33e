// A whole host session on the simulated cameras, through the exported functions only: start, list,
// open, features, grab, stop, close, shut down, and what happens to the settings file on the way.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "ViewerBiz3.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"
#include "support/common/WaitUntil.h"

using namespace ViewerBiz3;
using ::testing::HasSubstr;

namespace {

const std::string AreaCamera = "SimArea(SIM-AREA-01)";
constexpr int SimulatedTransport = 8;

// What a viewer keeps of the library's events. Every frame is released at once, as the interface
// requires.
struct SessionHost : IDeviceListUpdate, IImageUpdate, IAcqStatisticUpdate {
    void OnDeviceListUpdate(int kind, std::vector<std::string>, std::vector<std::string> cameras) override
    {
        singleUpdates += kind != 0 ? 1 : 0;
        if (kind == 0) {
            areaEntries = std::count_if(cameras.begin(), cameras.end(), [](const std::string& id) {
                return id.find("SIM-AREA-01") != std::string::npos;
            });
        }
    }

    void OnImageUpdate(std::string key, void* image, int, int) override
    {
        ++calls;
        if (auto* frame = static_cast<ZYLGENICAM::IImage*>(image)) {
            const bool whole = frame->IsValid() && frame->GetDataSize() >= frame->GetWidth() * frame->GetHeight();
            areaFrames += key == AreaCamera && whole ? 1 : 0;
            fullWidthAreaFrames += key == AreaCamera && frame->GetWidth() == 640 ? 1 : 0;
            frame->Release();
        }
    }

    void OnAcqStatisticUpdate(std::string name, bool fromSetInfo) override
    {
        statisticsFromGrab += (name == AreaCamera && !fromSetInfo) ? 1 : 0;
    }

    std::atomic<int> singleUpdates{0};
    std::atomic<long> areaEntries{0};
    std::atomic<int> statisticsFromGrab{0};
    std::atomic<std::uint64_t> calls{0};
    std::atomic<int> areaFrames{0};
    std::atomic<int> fullWidthAreaFrames{0};
};

class ApiSession : public ::testing::Test {
protected:
    void SetUp() override { setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "1", 1); }
    void TearDown() override { unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS"); }

    // Init, then this test's directory as the application directory; a second Init reads the
    // settings from there. Only the simulated transport is listed: nothing is searched on a network.
    void StartAndListCameras()
    {
        ASSERT_EQ(-1, Init());
        m_applicationDirectory.emplace(m_directory.Path());
        Utilities::StartLogFile(m_directory.Path(), 1 << 20);
        ASSERT_EQ(-1, Init());
        ASSERT_EQ(0, RegisterDeviceListUpdateListener(&host));
        ASSERT_EQ(0, SetTLTypeList(SimulatedTransport));
        ASSERT_EQ(0, RefreshCameraList(SimulatedTransport));
        ASSERT_TRUE(WaitUntil([&] { return !GetCameraInfo(AreaCamera, CAM_NAME).empty(); }));
    }

    std::string SettingsFile() const { return m_directory.File("Configuration.ini"); }

    SessionHost host;
    TempDirectory m_directory;
    std::optional<ApplicationDirectoryScope> m_applicationDirectory;
};

} // namespace

// Two sessions of a viewer on the area camera: the first quits while grabbing, without stopping
// the grab or closing the camera; the second goes the whole way.
TEST_F(ApiSession, AQuitWhileGrabbingThenAWholeSession)
{
    StartAndListCameras();
    ASSERT_EQ(0, RegisterImageUpdateListener(AreaCamera, &host));
    ASSERT_EQ(0, OpenCamera(AreaCamera));
    EXPECT_TRUE(WaitUntil([&] { return host.singleUpdates.load() > 0; })) << "open is announced";
    ASSERT_EQ(0, StartGrab(AreaCamera));
    ASSERT_TRUE(WaitUntil([&] { return host.calls.load() >= 5; }));
    EXPECT_EQ(0, SetParamterInfo(PARAM_IMAGE_FILE_SAVE_PREFIX, "SESSION"));
    EXPECT_EQ(0, UnInit()) << "stops and closes the camera";
    const std::uint64_t callsAtUnInit = host.calls.load();
    EXPECT_FALSE(std::filesystem::exists(SettingsFile())) << "only an existing settings file is written";

    WriteTextFile(SettingsFile(), "[User]\nImageFileSavePrefix = OLD\n");
    StartAndListCameras();
    EXPECT_EQ(callsAtUnInit, host.calls.load()) << "no call after UnInit";
    EXPECT_EQ("OLD", GetParamterInfo(PARAM_IMAGE_FILE_SAVE_PREFIX)) << "Init reloads the settings";
    EXPECT_EQ(AreaCamera, GetCameraInfo(AreaCamera, CAM_NAME)) << "listed under its user name";
    EXPECT_EQ("0", GetCameraInfo(AreaCamera, CAM_KIND));

    ASSERT_EQ(0, OpenCamera(AreaCamera));
    EXPECT_EQ(std::vector<std::string>{AreaCamera}, GetOpenedCameraIds());
    EXPECT_EQ("1", GetCameraInfo(AreaCamera, CAM_OPENED));

    std::string width;
    EXPECT_EQ(0, SetCameraNodeValue(AreaCamera, "Width", "320"));
    EXPECT_EQ(0, GetCameraNodeValue(AreaCamera, "Width", width));
    EXPECT_EQ("320", width);
    EXPECT_EQ(-4, GetCameraNodeValue(AreaCamera, "NoSuchFeature", width));
    EXPECT_THAT(GetAttrLayoutXML(FOCUS_CAMERA_FEATURES, AreaCamera), HasSubstr("RegisterDescription"));
    EXPECT_NE(nullptr, GetAttrNodeMap(FOCUS_CAMERA_FEATURES, AreaCamera, NODEMAP_MODULE3));

    // Image and statistics listeners go in before the grab and out after it.
    host.fullWidthAreaFrames = 0; // the first session grabbed at full width
    ASSERT_EQ(0, RegisterImageUpdateListener(AreaCamera, &host));
    ASSERT_EQ(0, RegisterAcqStatisticUpdateListener(&host));
    ASSERT_EQ(0, StartGrab(AreaCamera));
    EXPECT_TRUE(WaitUntil([&] { return host.areaFrames.load() >= 3 && host.statisticsFromGrab.load() > 0; }));
    EXPECT_TRUE(WaitUntil([] { return GetCameraInfo(AreaCamera, CAM_FRAME_COUNT) != "0"; }));
    EXPECT_EQ(0, StopGrab(AreaCamera));
    EXPECT_EQ(0, UnRegisterAcqStatisticUpdateListener(&host));
    EXPECT_EQ(0, UnRegisterImageUpdateListener(AreaCamera, &host));
    EXPECT_EQ(0, host.fullWidthAreaFrames.load()) << "every frame has the width set before the grab";

    // The next discovery recognises the open camera under its new name and lists it once.
    ASSERT_EQ(0, SetCameraNodeValue(AreaCamera, "DeviceUserID", "Renamed"));
    ASSERT_EQ(0, RefreshCameraList(SimulatedTransport));
    EXPECT_TRUE(WaitUntil([] { return GetCameraInfo(AreaCamera, CAM_NAME) == "Renamed(SIM-AREA-01)"; }));
    EXPECT_EQ(1, host.areaEntries.load());

    EXPECT_EQ(0, CloseCamera(AreaCamera));
    EXPECT_TRUE(GetOpenedCameraIds().empty());
    EXPECT_EQ(0, SetParamterInfo(PARAM_IMAGE_FILE_SAVE_PREFIX, "SESSION"));
    EXPECT_EQ(0, UnInit());
    EXPECT_THAT(ReadTextFile(SettingsFile()), HasSubstr("ImageFileSavePrefix = SESSION"));
}
