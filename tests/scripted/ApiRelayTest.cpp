// The exported functions as a host uses them: Init and UnInit, the answers before Init
// and for unknown devices, the host-to-host relays, listener registration and logging.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <list>
#include <memory>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "ViewerBiz3.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"
#include "support/scripted/ScriptedSdk.h"
#include "support/common/WaitUntil.h"

using namespace ViewerBiz3;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

// The arguments of an event as one line of text.
template <typename... Parts>
std::string Line(const Parts&... parts)
{
    std::ostringstream line;
    ((line << ' ' << parts), ...);
    return line.str().substr(1);
}

// Every event a host can receive, written down as one line of text.
class HostRecorder : public ITLTypeUpdate,
                     public IFocusUpdate,
                     public ILayoutUpdate,
                     public ISLImageShowModeUpdate,
                     public IAcqStatisticUpdate,
                     public IImportUpdate,
                     public ILoggerUpdate,
                     public ICorrectionUpdate,
                     public ILangUpdate {
public:
    void OnTLTypeUpdate(unsigned long long mask) override { Record("mask", mask); }
    void OnFocusUpdate(FOCUS_TYPE type, std::string id) override { Record("focus", type, id); }
    void OnLayoutUpdate(LAYOUT_TYPE layout) override { Record("layout", layout); }
    void OnSLImageShowModeUpdate(std::string id, int mode) override { Record("show mode", id, mode); }
    void OnAcqStatisticUpdate(std::string name, bool fromSetInfo) override { Record("statistics", name, fromSetInfo); }
    void OnImportUpdate(std::string text) override { Record("import", text); }
    void OnLoggerUpdate(std::string source, std::string level, std::string message) override
    {
        Record("log", level, source + ":", message);
    }
    void OnCorrectionUpdate(std::string id, int kind, float value, void* data) override
    {
        Record("correction", id, kind, value, data == this ? "data" : "other");
    }
    void OnLangUpdate(std::string language) override { Record("language", language); }

    std::vector<std::string> Events()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_events;
    }

private:
    template <typename... Parts>
    void Record(const Parts&... parts)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_events.push_back(Line(parts...));
    }

    std::mutex m_mutex;
    std::vector<std::string> m_events;
};

// An ROI listener that records what it is told and answers with given values, or fails.
class RoiListener : public IROIDrawUpdate {
public:
    RoiListener(int answerIndex, bool answerResult, bool fails = false)
        : answerIndex(answerIndex), answerResult(answerResult), fails(fails)
    {
    }

    void OnROIDrawUpdate(std::string id, int x, int y, int width, int height, int operation, int& index, bool& result,
                         int extra1, int extra2) override
    {
        if (fails)
            throw std::runtime_error("host listener failed");
        calls.push_back(Line(id, x, y, width, height, "op", operation, "index", index, "extras", extra1, extra2));
        index = answerIndex;
        result = answerResult;
    }

    const int answerIndex;
    const bool answerResult;
    const bool fails;
    std::vector<std::string> calls;
};

const std::string ListedCamera = "Line3(A1)";

// The answers of the device relays for a camera or card nobody listed: the same
// before Init (no device manager yet) as after it.
void ExpectUnknownDeviceFailures()
{
    const std::string camera = "Nobody(0)";
    std::string value = "untouched";
    int progress = 0;
    bool done = false;
    EXPECT_EQ(-1, OpenCamera(camera));
    EXPECT_EQ(-1, CloseCamera(camera));
    EXPECT_EQ(-1, StartGrab(camera));
    EXPECT_EQ(-1, StopGrab(camera));
    EXPECT_THAT(GetOpenedCameraIds(), IsEmpty());
    EXPECT_EQ("", GetCameraInfo(camera, CAM_NAME));
    EXPECT_EQ(-1, SetCameraInfo(camera, CAM_HOST_TEXT40, "x"));
    EXPECT_EQ(-1, ModifyCameraId(camera, "Other"));
    EXPECT_EQ(-1, ModifyCameraIp(camera, "192.168.1.2", "255.255.255.0", "0.0.0.0", false));
    EXPECT_EQ(-1, GetCameraNodeValue(camera, "Width", value));
    EXPECT_EQ(-1, SetCameraNodeValue(camera, "Width", "320"));
    EXPECT_EQ(-1, SetCameraImageMode(camera, 1, true));
    EXPECT_EQ(-1, GetCameraImageMode(camera));
    EXPECT_EQ(-1, GetSLImageShowMode(camera));
    EXPECT_EQ(-1, FirmwareUpgrade(camera, "firmware.bin", &progress, &done));
    EXPECT_EQ(nullptr, GetAttrLayoutXML(FOCUS_CAMERA, camera));
    EXPECT_EQ(nullptr, GetAttrNodeMap(FOCUS_CAMERA, camera, NODEMAP_MODULE3));
    EXPECT_EQ(nullptr, GetAttrNodeMap(FOCUS_CARD, camera, NODEMAP_MODULE2));
    EXPECT_EQ("", GetCardInfo("card", CARD_KEY));
    EXPECT_EQ(-1, GetCardNodeValue("card", "CardName", value));
    EXPECT_EQ(-1, SetCardNodeValue("card", "CardName", "x"));
    EXPECT_EQ("untouched", value);
    EXPECT_EQ(-1, CloseCard("card"));
    EXPECT_THAT(GetOpenedCardIds(), IsEmpty());
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

    HostRecorder host;
    TempDirectory m_directory;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
};

// Every relay test runs on an initialised library, so UnInit drops its listeners.
class ApiRelay : public ApiLifecycle {
protected:
    void SetUp() override
    {
        ApiLifecycle::SetUp();
        ASSERT_EQ(-1, InitHere());
    }
    void TearDown() override { UnInit(); }

    // A scripted GigE camera, discovered and in the device list.
    void ListCamera()
    {
        Scripted::ScriptedSdk::Instance().AddDevice(Scripted::AreaCamera("A1", "Line3"));
        ASSERT_EQ(0, RefreshCameraList(1));
        ASSERT_TRUE(WaitUntil([] { return !GetCameraInfo(ListedCamera, CAM_NAME).empty(); }));
    }
};

} // namespace

// The ROI relays pass a host's drawing to the other hosts: without listeners
// the caller's values stay, otherwise each listener sees what the one before wrote.
TEST_F(ApiRelay, RoiRelaysChainTheListenersAnswersAndSendTheirOperationCodes)
{
    int index = 3;
    bool result = false;
    EXPECT_EQ(0, DrawROI(ListedCamera, 10, 20, 30, 40, index, result, 5, 6));
    EXPECT_EQ(3, index);
    EXPECT_FALSE(result);

    RoiListener first(5, true);
    RoiListener last(9, false);
    ASSERT_EQ(0, RegisterROIUpdateListener(&first));
    ASSERT_EQ(0, RegisterROIUpdateListener(&last));
    result = true;
    EXPECT_EQ(0, DrawROI(ListedCamera, 10, 20, 30, 40, index, result, 5, 6));
    EXPECT_EQ(9, index);
    EXPECT_FALSE(result);
    EXPECT_EQ(0, SetROIPos(ListedCamera, 2, 11, 12, 13, 14));
    EXPECT_EQ(0, RomoveROI(ListedCamera, 2));
    EXPECT_THAT(first.calls, ElementsAre(ListedCamera + " 10 20 30 40 op 0 index 3 extras 5 6",
                                         ListedCamera + " 11 12 13 14 op 1 index 2 extras 0 0",
                                         ListedCamera + " 0 0 0 0 op 2 index 2 extras 0 0"));
    EXPECT_EQ(ListedCamera + " 10 20 30 40 op 0 index 5 extras 5 6", last.calls.at(0));
}

// The host-to-host relays pass their arguments on, even for a camera nobody listed, and logging
// reaches the logger listeners with the level word when asked to notify. Focus of an out-of-range
// type answers 0 and tells nobody. Only the host texts of a camera's information can be written,
// and writing one announces the statistics.
TEST_F(ApiRelay, HostRelaysPassTheirArgumentsOnAndOnlyHostTextsCanBeWritten)
{
    ListCamera();
    ASSERT_EQ(0, RegisterFocusUpdateListener(&host));
    ASSERT_EQ(0, RegisterSLImageShowModeUpdateListener(&host));
    ASSERT_EQ(0, RegisterCorrectionUpdateListener(&host));
    ASSERT_EQ(0, RegisterImportUpdateListener(&host));
    ASSERT_EQ(0, RegisterLoggerUpdateListener(&host));
    ASSERT_EQ(0, RegisterAcqStatisticUpdateListener(&host));
    const std::string name = GetCameraInfo(ListedCamera, CAM_NAME);

    EXPECT_EQ(0, SetFocus(static_cast<FOCUS_TYPE>(4), ListedCamera));
    EXPECT_EQ(0, SetFocus(static_cast<FOCUS_TYPE>(-1), ListedCamera));
    EXPECT_EQ(0, SetFocus(FOCUS_CAMERA, ListedCamera));
    EXPECT_EQ(0, SetSLImageShowMode("Nobody(0)", 2));
    EXPECT_EQ(0, NotifyCorrection(ListedCamera, 4, 1.5f, &host));
    NotifyImportUpdate("scene.ini");
    EXPECT_EQ(0, VLogDebug("viewer", "d", 1));
    EXPECT_EQ(0, VLogInfo("viewer", "i", 1));
    EXPECT_EQ(0, VLogWarning("viewer", "w", 1));
    EXPECT_EQ(0, VLogError("viewer", "e", 1));
    EXPECT_EQ(0, VLogDeadly("viewer", "x", 1));
    EXPECT_EQ(0, VLogError("viewer", "quiet", 0));
    EXPECT_EQ(-1, SetCameraInfo(ListedCamera, CAM_NAME, "Renamed"));
    EXPECT_EQ(name, GetCameraInfo(ListedCamera, CAM_NAME));
    EXPECT_EQ(0, SetCameraInfo(ListedCamera, CAM_HOST_TEXT40, "left view"));
    EXPECT_EQ("left view", GetCameraInfo(ListedCamera, CAM_HOST_TEXT40));

    EXPECT_THAT(host.Events(),
                ElementsAre("focus 1 " + ListedCamera, "show mode Nobody(0) 2",
                            "correction " + ListedCamera + " 4 1.5 data", "import scene.ini", "log Debug viewer: d",
                            "log Info viewer: i", "log Warning viewer: w", "log Error viewer: e",
                            "log Deadly viewer: x", "statistics " + ListedCamera + " 1"));
}

TEST_F(ApiRelay, RelaysOnAnUnknownDeviceAndRegistrationsOfANullListenerFail)
{
    ExpectUnknownDeviceFailures();
    // One shared registration refuses null for the plain lists; image and timer lists have their own.
    EXPECT_EQ(-1, RegisterTLTypeUpdateListener(nullptr));
    EXPECT_EQ(-1, UnRegisterTLTypeUpdateListerner(nullptr));
    EXPECT_EQ(-1, RegisterImageUpdateListener("A", nullptr));
    EXPECT_EQ(-1, UnRegisterImageUpdateListener("A", nullptr));
    EXPECT_EQ(-1, RegisterCardTimerNodeUpdateListener("card", "Node", 100, nullptr));
    EXPECT_EQ(-1, UnRegisterCardTimerNodeUpdateListener("card", "Node", 100, nullptr));
    EXPECT_EQ(-1, RegisterCameraTimerNodeUpdateListener("A", "Node", 100, nullptr));
    EXPECT_EQ(-1, UnRegisterCameraTimerNodeUpdateListener("A", "Node", 100, nullptr));
}

TEST_F(ApiRelay, AThrowingListenerBecomesTheGenericFailure)
{
    RoiListener throwing(0, false, true);
    ASSERT_EQ(0, RegisterROIUpdateListener(&throwing));
    ASSERT_EQ(0, RegisterLoggerUpdateListener(&host));
    int index = 1;
    bool result = false;

    EXPECT_NO_THROW(EXPECT_EQ(-1, DrawROI(ListedCamera, 1, 2, 3, 4, index, result, 0, 0)));
    EXPECT_NO_THROW(EXPECT_EQ(-1, RomoveROI(ListedCamera, 1)));
    EXPECT_THAT(host.Events(), IsEmpty()) << "the failure is logged without notifying";
    EXPECT_THAT(ReadTextFile(m_directory.File("Log/ZYLViewerLog.txt")),
                HasSubstr("DrawROI failed: host listener failed"));

    ASSERT_EQ(0, UnRegisterROIUpdateListener(&throwing));
    EXPECT_EQ(0, DrawROI(ListedCamera, 1, 2, 3, 4, index, result, 0, 0));
}

// UnInit leaves the released manager behind on purpose, so only a process that never called
// Init is "before Init": this test runs in a fresh copy of the test program (death tests re-run
// the program, see TestMain).
TEST_F(ApiLifecycle, RelaysFailBeforeInitWithoutTouchingTheSdk)
{
    EXPECT_EXIT(
        {
            ExpectUnknownDeviceFailures();
            std::list<std::string> protocols;
            std::list<std::string> serials;
            EXPECT_EQ(-1, GetCLProtocolsAndSerials(protocols, serials));
            EXPECT_EQ(~0ULL, GetTLTypeList());
            EXPECT_EQ(-1, RefreshCameraList(1));
            EXPECT_EQ(0, SetTLTypeList(8));
            EXPECT_EQ(0, SetFocus(FOCUS_CAMERA, "Line3(A1)"));
            EXPECT_EQ(0u, Scripted::ScriptedSdk::Instance().Counters().discoveries);
            std::exit(::testing::Test::HasFailure() ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "");
}

// A second Init finds the running library; a listener hears its events until it is unregistered
// and UnInit drops the rest; Init after UnInit starts afresh whatever the SDK answers.
TEST_F(ApiLifecycle, InitUnInitAndTheListenersInBetween)
{
    EXPECT_EQ(-1, InitHere());
    EXPECT_EQ(-1, InitHere()) << "a second Init finds the running library";
    ASSERT_EQ(0, RegisterTLTypeUpdateListener(&host));
    ASSERT_EQ(0, RegisterLayoutUpdateListener(&host));
    ASSERT_EQ(0, RegisterLoggerUpdateListener(&host));
    ASSERT_EQ(0, RegisterLangUpdateListener(&host));
    SetTLTypeList(8);
    SetLang("German");

    EXPECT_EQ(0, UnRegisterTLTypeUpdateListerner(&host));
    SetTLTypeList(2);
    SetImgLayout(static_cast<LAYOUT_TYPE>(4));
    EXPECT_EQ("German", GetLang());
    EXPECT_EQ(2u, GetTLTypeList());
    EXPECT_EQ(0, UnInit());
    SetImgLayout(static_cast<LAYOUT_TYPE>(5));
    VLogInfo("host", "after shutdown", 1);
    EXPECT_THAT(host.Events(), ElementsAre("mask 8", "language German", "layout 4"));
    EXPECT_EQ(static_cast<LAYOUT_TYPE>(5), GetImgLayout());

    Scripted::ScriptedSdk::Instance().SetInitResult(ZYLGENICAM::SDK_ERROR);
    EXPECT_EQ(-1, InitHere()) << "the SDK's own result is not passed on";
    EXPECT_EQ(15u, GetTLTypeList()) << "the new device manager starts with the default mask";
    EXPECT_EQ(0, UnInit());
    const Scripted::SdkCounters sdk = Scripted::ScriptedSdk::Instance().Counters();
    EXPECT_EQ(3u, sdk.inits);
    EXPECT_EQ(2u, sdk.uninits);
}
