// A GigE Vision camera process killed while the library grabs from it, in
// this program's own network namespace: the library notices the loss on its
// own, drops the camera, keeps answering, and lists the camera again once its
// process is back.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ViewerBiz3.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/FakeGigeCamera.h"
#include "support/common/StressApiOperations.h"
#include "support/common/TempDirectory.h"

extern bool g_privateNetworkNamespace;
extern std::string g_privateNetworkNamespaceFailure;

using namespace ViewerBiz3;

namespace {

constexpr int GigE = 1;

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

bool WaitFor(const std::function<bool()>& condition, std::chrono::seconds timeout)
{
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

bool IsOpened(const std::string& id)
{
    const auto ids = GetOpenedCameraIds();
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

} // namespace

TEST(FaultGige, AKilledCameraProcessIsNoticedDroppedAndListedAgainWhenBack)
{
    if (!g_privateNetworkNamespace) {
        GTEST_SKIP() << "no private network namespace: " << g_privateNetworkNamespaceFailure;
    }
    if (!FakeGigeCamera::ProgramAvailable()) {
        GTEST_SKIP() << FakeGigeCamera::kProgram << " is not installed";
    }
    FakeGigeCamera process("VB3FAULT1");
    ASSERT_TRUE(process.Start());
    TempDirectory directory;
    ListedCameras listed;
    StressListener logger;
    StressImageSink sink;

    ASSERT_EQ(-1, Init());
    ApplicationDirectoryScope applicationDirectory(directory.Path());
    Utilities::StartLogFile(directory.Path(), 1 << 20);
    ASSERT_EQ(0, SetTLTypeList(GigE));
    ASSERT_EQ(0, RegisterDeviceListUpdateListener(&listed));
    ASSERT_EQ(0, RegisterLoggerUpdateListener(&logger));
    ASSERT_EQ(0, RefreshCameraList(GigE));
    ASSERT_TRUE(WaitFor([&] { return !listed.Find("VB3FAULT1").empty(); }, std::chrono::seconds(20)));
    const std::string id = listed.Find("VB3FAULT1");

    ASSERT_EQ(0, OpenCamera(id));
    ASSERT_EQ(0, RegisterImageUpdateListener(id, &sink));
    ASSERT_EQ(0, StartGrab(id));
    ASSERT_TRUE(WaitFor([&] { return sink.frames.load() >= 3; }, std::chrono::seconds(15))) << "frames arrive";

    process.Kill();
    const auto killed = std::chrono::steady_clock::now();
    const bool noticed = WaitFor([&] { return !IsOpened(id); }, std::chrono::seconds(15));
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - killed).count();
    std::printf("loss of the killed camera process noticed after %.1f s\n", seconds);
    ASSERT_TRUE(noticed) << "the camera is still open 15 s after its process died";
    EXPECT_TRUE(WaitFor([&] { return logger.lossLines.load() >= 1; }, std::chrono::seconds(5)));
    std::this_thread::sleep_for(std::chrono::seconds(2));
    EXPECT_EQ(1u, logger.lossLines.load()) << "\"Camera is lost.\" is logged once";

    // The library keeps serving.
    EXPECT_EQ(static_cast<unsigned long long>(GigE), GetTLTypeList());
    EXPECT_EQ(-1, StartGrab(id));
    EXPECT_EQ(0, SetParamterInfo(PARAM_IMAGE_FILE_SAVE_PREFIX, "after loss"));
    EXPECT_EQ("after loss", GetParamterInfo(PARAM_IMAGE_FILE_SAVE_PREFIX));

    ASSERT_TRUE(process.Start());
    EXPECT_TRUE(WaitFor(
        [&] {
            RefreshCameraList(GigE);
            return !GetCameraInfo(id, CAM_NAME).empty();
        },
        std::chrono::seconds(20)))
        << "the restarted camera is listed again";
    EXPECT_EQ(0, OpenCamera(id));
    EXPECT_EQ(0, CloseCamera(id));
    EXPECT_EQ(0, UnInit());
}
