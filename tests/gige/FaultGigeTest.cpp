// A GigE Vision camera process killed while the library grabs from it, in
// this program's own network namespace: the library notices the loss on its
// own, drops the camera, keeps answering, and lists the camera again once its
// process is back.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ViewerBiz3.h"
#include "ZylImage.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/FakeGigeCamera.h"
#include "support/common/StressApiOperations.h"
#include "support/common/TempDirectory.h"
#include "support/common/WaitUntil.h"
#include "support/common/RequireEnvironment.h"

extern bool g_privateNetworkNamespace;
extern std::string g_privateNetworkNamespaceFailure;

using namespace ViewerBiz3;

namespace {

constexpr int GigE = 1;
constexpr int Simulated = 8;
const std::string SimulatedAreaCamera = "SimArea(SIM-AREA-01)";

// Counts the frames of each camera and hands every image back.
class FramesPerCamera final : public IImageUpdate {
public:
    void OnImageUpdate(std::string cameraKey, void* image, int, int) override
    {
        if (image == nullptr) {
            return;
        }
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_holding && m_held == nullptr)
            m_held = static_cast<ZYLGENICAM::IImage*>(image);
        else
            static_cast<ZYLGENICAM::IImage*>(image)->Release();
        ++m_frames[cameraKey];
    }

    // Keeps the next frame, as a viewer keeps the frame it shows, until ReleaseHeld.
    void HoldNext()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_holding = true;
    }

    bool Holds() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_held != nullptr;
    }

    void ReleaseHeld()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_held != nullptr)
            m_held->Release();
        m_held = nullptr;
        m_holding = false;
    }

    std::uint64_t Of(const std::string& cameraKey) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_frames.find(cameraKey);
        return found == m_frames.end() ? 0 : found->second;
    }

private:
    mutable std::mutex m_mutex;
    std::map<std::string, std::uint64_t> m_frames;
    bool m_holding = false;
    ZYLGENICAM::IImage* m_held = nullptr;
};

// The identifiers of the last whole device list.
class ListedCameras final : public IDeviceListUpdate {
public:
    void OnDeviceListUpdate(int kind, std::vector<std::string>, std::vector<std::string> second) override
    {
        if (kind == 0) {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_ids = std::move(second);
            ++m_lists;
        }
    }

    // The identifier of the camera with this serial number in the last list, or "".
    std::string Find(const std::string& serial) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (const std::string& id : m_ids) {
            if (id.find(serial) != std::string::npos) {
                return id;
            }
        }
        return {};
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_ids;
    int m_lists = 0;
};

bool IsOpened(const std::string& id)
{
    const auto ids = GetOpenedCameraIds();
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

} // namespace

// The library grabbing from one simulated GigE Vision camera in its own process.
class FaultGige : public ::testing::Test {
protected:
    // A silent camera costs the watchdog's period, the frames' alive window and the probe's
    // deadline, plus slack for a loaded machine; Aravis's own control-lost signal comes after
    // about 5.9 s. A killed camera is refused at once and must be handled within 1.2 s.
    static constexpr double kNoticeDeadlineSeconds = 4.5;
    static constexpr double kKilledHandledDeadlineSeconds = 1.2;

    void SetUp() override
    {
        VB3_REQUIRE(g_privateNetworkNamespace, "no private network namespace: " << g_privateNetworkNamespaceFailure);
        VB3_REQUIRE(FakeGigeCamera::ProgramAvailable(), FakeGigeCamera::kProgram << " is not installed");
        ASSERT_TRUE(m_process.Start());
        ASSERT_EQ(-1, Init());
        m_initialized = true;
        m_applicationDirectory = std::make_unique<ApplicationDirectoryScope>(m_directory.Path());
        Utilities::StartLogFile(m_directory.Path(), 1 << 20);
        setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "area", 1);
        ASSERT_EQ(0, SetTLTypeList(GigE | Simulated));
        ASSERT_EQ(0, RegisterDeviceListUpdateListener(&m_listed));
        ASSERT_EQ(0, RegisterLoggerUpdateListener(&m_logger));
        ASSERT_EQ(0, RefreshCameraList(GigE | Simulated));
        ASSERT_TRUE(WaitUntil([&] { return !m_listed.Find(m_process.SerialNumber()).empty(); }));
        m_id = m_listed.Find(m_process.SerialNumber());
        ASSERT_EQ(0, OpenCamera(m_id));
        ASSERT_EQ(0, RegisterImageUpdateListener(m_id, &m_frames));
        ASSERT_EQ(0, StartGrab(m_id));
        ASSERT_TRUE(WaitUntil([&] { return m_frames.Of(m_id) >= 3; })) << "frames arrive";
    }

    void TearDown() override
    {
        if (m_initialized) {
            // Images are handed to the host without a lock, so no camera may still deliver while
            // UnInit takes the listeners away.
            for (const std::string& id : GetOpenedCameraIds()) {
                CloseCamera(id);
            }
            EXPECT_EQ(0, UnInit());
        }
        unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS");
    }

    // From the fault on: "Camera is lost." is logged within the deadline and the camera leaves
    // the opened cameras.
    void ExpectLossNoticedAndCameraDropped(const char* fault, double deadlineSeconds = kNoticeDeadlineSeconds)
    {
        const auto start = std::chrono::steady_clock::now();
        const auto secondsSinceStart = [&] {
            return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        };
        const std::uint64_t lossesBefore = m_logger.lossLines.load();
        ASSERT_TRUE(WaitUntil([&] { return m_logger.lossLines.load() > lossesBefore; }))
            << fault << ": no \"Camera is lost.\" after 15 s";
        const double noticedAfter = secondsSinceStart();
        ASSERT_TRUE(WaitUntil([&] { return !IsOpened(m_id); })) << fault << ": the camera is still open after 15 s";
        const double droppedAfter = secondsSinceStart();
        std::printf("%s: loss noticed after %.2f s, camera dropped after %.2f s\n", fault, noticedAfter, droppedAfter);
        EXPECT_LT(droppedAfter, deadlineSeconds) << fault;
    }

    // Refreshes until the camera is in the device list again.
    bool ListedAgain()
    {
        return WaitUntil(
            [&] {
                RefreshCameraList(GigE);
                return !GetCameraInfo(m_id, CAM_NAME).empty();
            },
            std::chrono::seconds(20));
    }

    FakeGigeCamera m_process{"VB3FAULT1"};
    TempDirectory m_directory;
    ListedCameras m_listed;
    StressListener m_logger;
    FramesPerCamera m_frames;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
    bool m_initialized = false;
    std::string m_id;
};

TEST_F(FaultGige, AKilledCameraProcessIsNoticedDroppedAndListedAgainWhenBack)
{
    // Another camera grabs all along.
    ASSERT_TRUE(WaitUntil([&] { return !GetCameraInfo(SimulatedAreaCamera, CAM_NAME).empty(); }));
    ASSERT_EQ(0, OpenCamera(SimulatedAreaCamera));
    ASSERT_EQ(0, StartGrab(SimulatedAreaCamera));

    m_process.Kill();
    ASSERT_NO_FATAL_FAILURE(ExpectLossNoticedAndCameraDropped("killed camera process", kKilledHandledDeadlineSeconds));
    const std::uint64_t otherCameraFrames = m_frames.Of(SimulatedAreaCamera);
    EXPECT_TRUE(
        WaitUntil([&] { return m_frames.Of(SimulatedAreaCamera) >= otherCameraFrames + 3; }, std::chrono::seconds(10)))
        << "the other camera keeps streaming";
    EXPECT_EQ("1", GetCameraInfo(SimulatedAreaCamera, CAM_GRABBING));

    // The library keeps serving.
    EXPECT_EQ(static_cast<unsigned long long>(GigE | Simulated), GetTLTypeList());
    EXPECT_EQ(-1, StartGrab(m_id));
    EXPECT_EQ(0, SetParamterInfo(PARAM_IMAGE_FILE_SAVE_PREFIX, "after loss"));
    EXPECT_EQ("after loss", GetParamterInfo(PARAM_IMAGE_FILE_SAVE_PREFIX));

    ASSERT_TRUE(m_process.Start());
    EXPECT_TRUE(ListedAgain()) << "the restarted camera is listed again";
    EXPECT_EQ(0, OpenCamera(m_id));
    EXPECT_EQ(0, CloseCamera(m_id));
    // Several watchdog rounds have passed since the loss.
    EXPECT_EQ(1u, m_logger.lossLines.load()) << "\"Camera is lost.\" is logged once";
}

// A viewer that quits right after a cable pull does not wait for Aravis to give up on the device,
// whether the watchdog noticed the loss already or not.
TEST_F(FaultGige, UnInitRightAfterALossReturnsAtOnce)
{
    const auto secondsSince = [](std::chrono::steady_clock::time_point start) {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    m_frames.HoldNext();
    ASSERT_TRUE(WaitUntil([&] { return m_frames.Holds(); }));
    m_process.Kill();
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(0, CloseCamera(m_id));
    const double closeSeconds = secondsSince(start);
    // The frame the viewer still shows may hold the last reference to the dead device's stream.
    start = std::chrono::steady_clock::now();
    m_frames.ReleaseHeld();
    const double releaseSeconds = secondsSince(start);
    ASSERT_TRUE(m_process.Start());
    ASSERT_TRUE(ListedAgain());
    ASSERT_EQ(0, OpenCamera(m_id));
    ASSERT_EQ(0, StartGrab(m_id));

    m_process.Kill();
    ASSERT_NO_FATAL_FAILURE(ExpectLossNoticedAndCameraDropped("killed camera process", kKilledHandledDeadlineSeconds));
    start = std::chrono::steady_clock::now();
    EXPECT_EQ(0, UnInit());
    m_initialized = false;
    const double unInitSeconds = secondsSince(start);
    std::printf("right after the kill: CloseCamera %.2f s, releasing a held frame %.2f s; after the loss: UnInit "
                "%.2f s\n",
                closeSeconds, releaseSeconds, unInitSeconds);
    EXPECT_LT(closeSeconds, 1.0);
    EXPECT_LT(releaseSeconds, 1.0);
    EXPECT_LT(unInitSeconds, 1.0);
}

// A camera that stops answering without a word (a pulled cable) is found out by the watchdog's own
// probe, long before Aravis's heartbeat gives up; once it answers again it can be opened and
// streams again.
TEST_F(FaultGige, ACameraThatFallsSilentIsNoticedDroppedAndUsableWhenItAnswersAgain)
{
    m_process.Freeze();
    ASSERT_NO_FATAL_FAILURE(ExpectLossNoticedAndCameraDropped("silent camera"));
    EXPECT_EQ(-1, StartGrab(m_id));

    m_process.Thaw();
    ASSERT_TRUE(ListedAgain()) << "the camera that answers again is listed again";
    ASSERT_TRUE(WaitUntil([&] { return OpenCamera(m_id) == 0; })) << "the camera can be opened again";
    const std::uint64_t framesBefore = m_frames.Of(m_id);
    ASSERT_EQ(0, StartGrab(m_id)); // the image listener, registered once, serves every camera
    EXPECT_TRUE(WaitUntil([&] { return m_frames.Of(m_id) >= framesBefore + 3; }))
        << "frames arrive again; the camera counted " << GetCameraInfo(m_id, CAM_FRAME_COUNT) << " frames and "
        << GetCameraInfo(m_id, CAM_ERROR_COUNT) << " errors, open: " << IsOpened(m_id)
        << ", losses: " << m_logger.lossLines.load();
}
