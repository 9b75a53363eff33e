// A whole host session on the simulated cameras, through the exported
// functions only: start, list, open, features, grab, stop, close, shut down,
// and what happens to the settings file on the way.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ViewerBiz3.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"
#include "support/common/WaitUntil.h"

using namespace ViewerBiz3;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

const std::string AreaCamera = "SimArea(SIM-AREA-01)";
const std::string ShowModeCamera = "SimShowMode(SIM-SL-01)";
constexpr unsigned long long SimulatedTransport = 8;

// What a viewer keeps of the library's events; frames are checked and
// released at once, as the interface requires.
class SessionHost : public IDeviceListUpdate, public IImageUpdate, public IAcqStatisticUpdate {
public:
    void OnDeviceListUpdate(int kind, std::vector<std::string> first, std::vector<std::string> second) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (kind == 0) {
            m_cameras = std::move(second);
        } else {
            m_singleUpdates.push_back(first.front() + "|" + second.front());
        }
    }

    void OnImageUpdate(std::string key, void* image, int, int) override
    {
        if (image == nullptr) {
            return;
        }
        auto* frame = static_cast<ZYLGENICAM::IImage*>(image);
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (key == AreaCamera && frame->IsValid() && frame->GetData() != nullptr &&
                frame->GetDataSize() >= frame->GetWidth() * frame->GetHeight()) {
                m_frameWidths.push_back(frame->GetWidth());
            }
        }
        frame->Release();
    }

    void OnAcqStatisticUpdate(std::string name, bool fromSetInfo) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (name == AreaCamera && !fromSetInfo) {
            ++m_statisticsFromGrab;
        }
    }

    std::vector<std::string> Cameras() const { return Locked(m_cameras); }
    std::vector<std::string> SingleUpdates() const { return Locked(m_singleUpdates); }
    std::vector<std::uint64_t> FrameWidths() const { return Locked(m_frameWidths); }
    int StatisticsFromGrab() const { return Locked(m_statisticsFromGrab); }

private:
    template <typename Value>
    Value Locked(const Value& value) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return value;
    }

    mutable std::mutex m_mutex;
    std::vector<std::string> m_cameras;
    std::vector<std::string> m_singleUpdates;
    std::vector<std::uint64_t> m_frameWidths;
    int m_statisticsFromGrab = 0;
};

// A viewer that releases every frame and notes any call that comes after it was told a camera
// closed or the library shut down.
class QuittingViewer : public IImageUpdate {
public:
    void OnImageUpdate(std::string key, void* image, int, int) override
    {
        if (quit.load() || (key == ShowModeCamera && showModeClosed.load())) {
            ++lateCalls;
        }
        if (image != nullptr) {
            static_cast<ZYLGENICAM::IImage*>(image)->Release();
            ++frames;
        }
    }

    std::atomic<bool> showModeClosed{false};
    std::atomic<bool> quit{false};
    std::atomic<int> lateCalls{0};
    std::atomic<std::uint64_t> frames{0};
};

double SecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class ApiSession : public ::testing::Test {
protected:
    void SetUp() override { setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "1", 1); }
    void TearDown() override { unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS"); }

    // Init, then this test's directory as the application directory; a second
    // Init reads the settings from there.
    void StartHere()
    {
        ASSERT_EQ(-1, Init());
        m_applicationDirectory = std::make_unique<ApplicationDirectoryScope>(m_directory.Path());
        Utilities::StartLogFile(m_directory.Path(), 1 << 20);
        ASSERT_EQ(-1, Init());
    }

    // Only the simulated transport: nothing is searched on a network.
    void ListSimulatedCameras()
    {
        ASSERT_EQ(0, RegisterDeviceListUpdateListener(&host));
        ASSERT_EQ(0, SetTLTypeList(SimulatedTransport));
        ASSERT_EQ(0, RefreshCameraList(static_cast<int>(SimulatedTransport)));
        ASSERT_TRUE(WaitUntil([&] {
            const auto cameras = host.Cameras();
            return std::find(cameras.begin(), cameras.end(), AreaCamera) != cameras.end();
        }));
    }

    std::string SettingsFile() const { return m_directory.File("Configuration.ini"); }

    SessionHost host;
    TempDirectory m_directory;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
};

} // namespace

TEST_F(ApiSession, AHostListsOpensConfiguresGrabsAndClosesTheAreaCamera)
{
    WriteTextFile(SettingsFile(), "[User]\nImageFileSavePrefix = OLD\n");
    StartHere();
    EXPECT_EQ("OLD", GetParamterInfo(PARAM_IMAGE_FILE_SAVE_PREFIX)) << "Init reloads the settings";
    ListSimulatedCameras();
    EXPECT_EQ("0", GetCameraInfo(AreaCamera, CAM_KIND));

    ASSERT_EQ(0, OpenCamera(AreaCamera));
    EXPECT_THAT(GetOpenedCameraIds(), Contains(AreaCamera));
    EXPECT_EQ("1", GetCameraInfo(AreaCamera, CAM_OPENED));
    EXPECT_TRUE(WaitUntil([&] { return !host.SingleUpdates().empty(); })) << "open is announced";

    std::string width;
    EXPECT_EQ(0, SetCameraNodeValue(AreaCamera, "Width", "320"));
    EXPECT_EQ(0, GetCameraNodeValue(AreaCamera, "Width", width));
    EXPECT_EQ("320", width);
    EXPECT_EQ(-4, GetCameraNodeValue(AreaCamera, "NoSuchFeature", width));
    const char* description = GetAttrLayoutXML(FOCUS_CAMERA_FEATURES, AreaCamera);
    ASSERT_NE(nullptr, description);
    EXPECT_THAT(std::string(description), HasSubstr("RegisterDescription"));
    EXPECT_NE(nullptr, GetAttrNodeMap(FOCUS_CAMERA_FEATURES, AreaCamera, NODEMAP_MODULE3));

    // Image and statistics listeners go in before the grab and out after it.
    ASSERT_EQ(0, RegisterImageUpdateListener(AreaCamera, &host));
    ASSERT_EQ(0, RegisterAcqStatisticUpdateListener(&host));
    ASSERT_EQ(0, StartGrab(AreaCamera));
    EXPECT_TRUE(WaitUntil([&] { return host.FrameWidths().size() >= 3 && host.StatisticsFromGrab() > 0; }));
    EXPECT_TRUE(WaitUntil([] { return GetCameraInfo(AreaCamera, CAM_FRAME_COUNT) != "0"; }));
    EXPECT_EQ(0, StopGrab(AreaCamera));
    EXPECT_EQ(0, UnRegisterAcqStatisticUpdateListener(&host));
    EXPECT_EQ(0, UnRegisterImageUpdateListener(AreaCamera, &host));
    EXPECT_THAT(host.FrameWidths(), Not(Contains(640u))) << "every frame has the width set before the grab";

    EXPECT_EQ(0, CloseCamera(AreaCamera));
    EXPECT_THAT(GetOpenedCameraIds(), IsEmpty());
    EXPECT_EQ(0, SetParamterInfo(PARAM_IMAGE_FILE_SAVE_PREFIX, "SESSION"));
    EXPECT_EQ(0, UnInit());

    EXPECT_THAT(ReadTextFile(SettingsFile()), HasSubstr("ImageFileSavePrefix = SESSION"));
}

// A viewer that quits (or closes a camera) without stopping the grab first.
TEST_F(ApiSession, CloseCameraAndUnInitWhileGrabbingStopAtOnceAndInitWorksAgain)
{
    StartHere();
    ListSimulatedCameras();
    QuittingViewer viewer;
    ASSERT_EQ(0, RegisterImageUpdateListener(AreaCamera, &viewer));
    for (const std::string& id : {AreaCamera, ShowModeCamera}) {
        ASSERT_EQ(0, OpenCamera(id));
        ASSERT_EQ(0, StartGrab(id));
    }
    ASSERT_TRUE(WaitUntil([&] { return viewer.frames.load() >= 5; }));

    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(0, CloseCamera(ShowModeCamera));
    const double closeSeconds = SecondsSince(start);
    viewer.showModeClosed = true;
    start = std::chrono::steady_clock::now();
    EXPECT_EQ(0, UnInit());
    const double unInitSeconds = SecondsSince(start);
    viewer.quit = true;
    std::printf("while grabbing: CloseCamera %.3f s, UnInit %.3f s\n", closeSeconds, unInitSeconds);
    EXPECT_LT(closeSeconds, 1.0);
    EXPECT_LT(unInitSeconds, 1.0);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(0, viewer.lateCalls.load());

    viewer.quit = false;
    const std::uint64_t framesBefore = viewer.frames.load();
    ASSERT_EQ(-1, Init());
    ListSimulatedCameras();
    ASSERT_TRUE(WaitUntil([] { return !GetCameraInfo(AreaCamera, CAM_NAME).empty(); }));
    ASSERT_EQ(0, RegisterImageUpdateListener(AreaCamera, &viewer));
    ASSERT_EQ(0, OpenCamera(AreaCamera));
    ASSERT_EQ(0, StartGrab(AreaCamera));
    EXPECT_TRUE(WaitUntil([&] { return viewer.frames.load() >= framesBefore + 3; }));
    EXPECT_EQ(0, UnInit());
}

// An opened simulated camera is recognised by the next discovery whatever its name.
TEST_F(ApiSession, ARenamedOpenCameraKeepsItsSingleEntry)
{
    StartHere();
    ListSimulatedCameras();
    ASSERT_EQ(0, OpenCamera(AreaCamera));
    ASSERT_EQ(0, SetCameraNodeValue(AreaCamera, "DeviceUserID", "Renamed"));
    ASSERT_EQ(0, RefreshCameraList(static_cast<int>(SimulatedTransport)));
    EXPECT_TRUE(WaitUntil([] { return GetCameraInfo(AreaCamera, CAM_NAME) == "Renamed(SIM-AREA-01)"; }))
        << "the open camera is recognised under its new name";
    const auto cameras = host.Cameras();
    EXPECT_EQ(1, std::count_if(cameras.begin(), cameras.end(),
                               [](const std::string& id) { return id.find("SIM-AREA-01") != std::string::npos; }));
    EXPECT_EQ(0, UnInit());
}

TEST_F(ApiSession, ShutdownCreatesNoSettingsFile)
{
    StartHere();
    ListSimulatedCameras();
    ASSERT_EQ(0, OpenCamera(AreaCamera));
    EXPECT_EQ(0, SetParamterInfo(PARAM_IMAGE_FILE_SAVE_PREFIX, "SESSION"));

    EXPECT_EQ(0, UnInit()) << "closes the still open camera";

    EXPECT_FALSE(std::filesystem::exists(SettingsFile()));
}
