// The library's lifecycle as a host sees it through the exported functions:
// Init and UnInit results and steps, what answers before Init, and that
// starting and stopping repeatedly leaves no thread behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ViewerBiz3.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/ProcessThreads.h"
#include "support/common/TempDirectory.h"
#include "support/scripted/ScriptedSdk.h"
#include "support/common/WaitUntil.h"

using namespace ViewerBiz3;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

bool WaitForDiscoveries(std::uint64_t expected)
{
    return WaitUntil([&] { return Scripted::ScriptedSdk::Instance().Counters().discoveries >= expected; });
}

class HostListener : public ILayoutUpdate, public ILoggerUpdate, public ITLTypeUpdate {
public:
    void OnLayoutUpdate(LAYOUT_TYPE layout) override { Record("layout " + std::to_string(layout)); }
    void OnLoggerUpdate(std::string source, std::string level, std::string message) override
    {
        Record("log " + level + " " + source + ": " + message);
    }
    void OnTLTypeUpdate(unsigned long long mask) override { Record("mask " + std::to_string(mask)); }

    std::vector<std::string> Events()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_events;
    }

private:
    void Record(std::string event)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_events.push_back(std::move(event));
    }

    std::mutex m_mutex;
    std::vector<std::string> m_events;
};

// UnInit leaves the released manager behind on purpose, so only a process that never
// called Init is "before Init": such a test runs in a fresh copy of the test program
// (death tests re-run the program, see TestMain).
void InFreshProcess(const std::function<void()>& body)
{
    EXPECT_EXIT(
        {
            body();
            std::exit(::testing::Test::HasFailure() ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "");
}

class ApiLifecycle : public ::testing::Test {
protected:
    // The SDK's counters start at zero for every test.
    void SetUp() override { Scripted::ScriptedSdk::Instance().Reset(); }
    // Init, then the settings and the log of this test in its own directory
    // (Init points both at the test program's directory).
    int InitHere()
    {
        m_applicationDirectory.reset();
        const int result = Init();
        m_applicationDirectory = std::make_unique<ApplicationDirectoryScope>(m_directory.Path());
        Utilities::StartLogFile(m_directory.Path(), 1 << 20);
        return result;
    }

    TempDirectory m_directory;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
};

} // namespace

TEST_F(ApiLifecycle, InitReportsSuccessAsMinusOneAndUnInitAsZero)
{
    EXPECT_EQ(-1, InitHere());
    EXPECT_EQ(-1, InitHere()) << "a second Init finds the running library";
    EXPECT_EQ(0, UnInit());

    const Scripted::SdkCounters sdk = Scripted::ScriptedSdk::Instance().Counters();
    EXPECT_EQ(2u, sdk.inits);
    EXPECT_EQ(1u, sdk.uninits);
}

TEST_F(ApiLifecycle, InitIgnoresTheResultOfTheSdkStart)
{
    Scripted::ScriptedSdk::Instance().SetInitResult(ZYLGENICAM::SDK_ERROR);

    EXPECT_EQ(-1, InitHere());
    EXPECT_EQ(15u, GetTLTypeList());
    EXPECT_EQ(0, UnInit());
}

TEST_F(ApiLifecycle, DeviceRelaysAnswerTheirFailureBeforeInit)
{
    InFreshProcess([] {
        std::string value = "untouched";

        EXPECT_EQ(-1, OpenCamera("Line3(A1)"));
        EXPECT_EQ(-1, CloseCamera("Line3(A1)"));
        EXPECT_EQ(-1, StartGrab("Line3(A1)"));
        EXPECT_EQ(-1, StopGrab("Line3(A1)"));
        EXPECT_THAT(GetOpenedCameraIds(), IsEmpty());
        EXPECT_EQ("", GetCameraInfo("Line3(A1)", CAM_NAME));
        EXPECT_EQ(-1, SetCameraInfo("Line3(A1)", CAM_HOST_TEXT40, "x"));
        EXPECT_EQ(-1, ModifyCameraId("Line3(A1)", "Other"));
        EXPECT_EQ(-1, ModifyCameraIp("Line3(A1)", "192.168.1.2", "255.255.255.0", "0.0.0.0", false));
        EXPECT_EQ(~0ULL, GetTLTypeList());
        EXPECT_EQ("", GetCardInfo("card", CARD_KEY));
        EXPECT_EQ(-1, GetCardNodeValue("card", "CardName", value));
        EXPECT_EQ(-1, SetCardNodeValue("card", "CardName", "x"));
        EXPECT_EQ(-1, GetCameraNodeValue("Line3(A1)", "Width", value));
        EXPECT_EQ(-1, SetCameraNodeValue("Line3(A1)", "Width", "320"));
        EXPECT_EQ("untouched", value);
        EXPECT_EQ(nullptr, GetAttrLayoutXML(FOCUS_CAMERA, "Line3(A1)"));
        EXPECT_EQ(nullptr, GetAttrNodeMap(FOCUS_CAMERA, "Line3(A1)", NODEMAP_MODULE3));
    });
}

TEST_F(ApiLifecycle, RelaysThatPresumeInitDoNotCrashBeforeIt)
{
    InFreshProcess([] {
        std::list<std::string> protocols;
        std::list<std::string> serials;
        int progress = 0;
        bool done = false;

        EXPECT_EQ(-1, RefreshCameraList(1));
        EXPECT_EQ(0, SetTLTypeList(8));
        EXPECT_EQ(0, SetFocus(FOCUS_CAMERA, "Line3(A1)"));
        EXPECT_EQ(-1, SetCameraImageMode("Line3(A1)", 1, true));
        EXPECT_EQ(-1, GetCameraImageMode("Line3(A1)"));
        EXPECT_EQ(-1, GetSLImageShowMode("Line3(A1)"));
        EXPECT_EQ(-1, FirmwareUpgrade("Line3(A1)", "firmware.bin", &progress, &done));
        EXPECT_EQ(-1, GetCLProtocolsAndSerials(protocols, serials));
        EXPECT_EQ(-1, OpenCard("card"));
        EXPECT_EQ(-1, CloseCard("card"));
        EXPECT_EQ(-1, OpenCLCamera("cl", "protocol", "port"));
        EXPECT_EQ(-1, CloseCLCamera("cl"));
        EXPECT_THAT(GetOpenedCardIds(), IsEmpty());
        EXPECT_EQ(0u, Scripted::ScriptedSdk::Instance().Counters().discoveries);
    });
}

TEST_F(ApiLifecycle, UnInitDropsEveryListenerBeforeShuttingDown)
{
    HostListener host;
    ASSERT_EQ(-1, InitHere());
    ASSERT_EQ(0, RegisterLayoutUpdateListener(&host));
    ASSERT_EQ(0, RegisterLoggerUpdateListener(&host));
    ASSERT_EQ(0, RegisterTLTypeUpdateListener(&host));
    SetImgLayout(static_cast<LAYOUT_TYPE>(2));

    EXPECT_EQ(0, UnInit());
    SetImgLayout(static_cast<LAYOUT_TYPE>(3));
    VLogInfo("host", "after shutdown", 1);

    EXPECT_THAT(host.Events(), ElementsAre("layout 2"));
}

TEST_F(ApiLifecycle, InitAfterUnInitStartsAFreshDeviceManager)
{
    ASSERT_EQ(-1, InitHere());
    ASSERT_EQ(0, SetTLTypeList(8));
    ASSERT_EQ(8u, GetTLTypeList());
    ASSERT_EQ(0, UnInit());

    EXPECT_EQ(-1, InitHere());
    EXPECT_EQ(15u, GetTLTypeList()) << "the new device manager starts with the default mask";
    EXPECT_EQ(0, UnInit());
}

TEST_F(ApiLifecycle, RepeatedInitAndUnInitLeaveNoThreadBehind)
{
    Scripted::ScriptedSdk::Instance().AddDevice(Scripted::AreaCamera("A1", "Line3"));
    auto cycle = [this](std::uint64_t discoveriesBefore) {
        ASSERT_EQ(-1, InitHere());
        ASSERT_EQ(0, RefreshCameraList(1));
        ASSERT_TRUE(WaitForDiscoveries(discoveriesBefore + 1)) << "the discovery thread never searched";
        ASSERT_EQ(0, UnInit());
    };
    // The first cycle may leave threads that live as long as the process
    // (sanitizer runtimes); the library's own must not add up over cycles.
    const std::size_t beforeFirstCycle = ProcessThreadCount();
    cycle(0);
    WaitForProcessThreadCount(beforeFirstCycle, std::chrono::seconds(2));
    const std::size_t baseline = ProcessThreadCount();

    for (int round = 0; round < 5; ++round) {
        cycle(Scripted::ScriptedSdk::Instance().Counters().discoveries);
    }

    EXPECT_TRUE(WaitForProcessThreadCount(baseline, std::chrono::seconds(10)))
        << ProcessThreadCount() << " threads, " << baseline << " before";
}
