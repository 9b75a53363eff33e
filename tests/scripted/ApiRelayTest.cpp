// The exported relays as a host uses them: focus and camera texts on a listed
// camera, the host-to-host ROI, correction, import and show-mode relays,
// listener registration and host logging.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "ViewerBiz3.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"
#include "support/scripted/ScriptedSdk.h"

using namespace ViewerBiz3;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

// Every event a host can receive, written down as one line of text.
class HostRecorder : public ITLTypeUpdate,
                     public IDeviceListUpdate,
                     public IFocusUpdate,
                     public ILayoutUpdate,
                     public ISLImageShowModeUpdate,
                     public IAcqStatisticUpdate,
                     public IImportUpdate,
                     public ILoggerUpdate,
                     public ICorrectionUpdate,
                     public ILangUpdate {
public:
    void OnTLTypeUpdate(unsigned long long mask) override { Record("mask " + std::to_string(mask)); }
    void OnDeviceListUpdate(int kind, std::vector<std::string>, std::vector<std::string> cameras) override
    {
        if (kind == 0) {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_cameras = std::move(cameras);
            m_changed.notify_all();
        }
    }
    void OnFocusUpdate(FOCUS_TYPE type, std::string id) override { Record("focus " + std::to_string(type) + " " + id); }
    void OnLayoutUpdate(LAYOUT_TYPE layout) override { Record("layout " + std::to_string(layout)); }
    void OnSLImageShowModeUpdate(std::string id, int mode) override
    {
        Record("show mode " + id + " " + std::to_string(mode));
    }
    void OnAcqStatisticUpdate(std::string name, bool fromSetInfo) override
    {
        Record("statistics " + name + (fromSetInfo ? " true" : " false"));
    }
    void OnImportUpdate(std::string text) override { Record("import " + text); }
    void OnLoggerUpdate(std::string source, std::string level, std::string message) override
    {
        Record("log " + level + " " + source + ": " + message);
    }
    void OnCorrectionUpdate(std::string id, int kind, float value, void* data) override
    {
        Record("correction " + id + " " + std::to_string(kind) + " " + std::to_string(value) +
               (data == this ? " data" : " other"));
    }
    void OnLangUpdate(std::string language) override { Record("language " + language); }

    std::vector<std::string> Events()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_events;
    }

    bool WaitForCamera(const std::string& id)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(10),
                                  [&] { return std::find(m_cameras.begin(), m_cameras.end(), id) != m_cameras.end(); });
    }

private:
    void Record(std::string event)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_events.push_back(std::move(event));
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_events;
    std::vector<std::string> m_cameras;
};

// An ROI listener that records what it is told and answers with given values.
class RoiListener : public IROIDrawUpdate {
public:
    RoiListener(int answerIndex, bool answerResult) : m_answerIndex(answerIndex), m_answerResult(answerResult) {}

    void OnROIDrawUpdate(std::string id, int x, int y, int width, int height, int operation, int& index, bool& result,
                         int extra1, int extra2) override
    {
        calls.push_back(id + " " + std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(width) + " " +
                        std::to_string(height) + " op " + std::to_string(operation) + " index " +
                        std::to_string(index) + " extras " + std::to_string(extra1) + " " + std::to_string(extra2));
        index = m_answerIndex;
        result = m_answerResult;
    }

    std::vector<std::string> calls;

private:
    int m_answerIndex;
    bool m_answerResult;
};

class ThrowingRoiListener : public IROIDrawUpdate {
public:
    void OnROIDrawUpdate(std::string, int, int, int, int, int, int&, bool&, int, int) override
    {
        throw std::runtime_error("host listener failed");
    }
};

const std::string ListedCamera = "Line3(A1)";

class ApiRelay : public ::testing::Test {
protected:
    // Every test runs on an initialised library, so UnInit drops its listeners.
    void SetUp() override
    {
        Scripted::ScriptedSdk::Instance().Reset();
        ASSERT_EQ(-1, Init());
        m_applicationDirectory = std::make_unique<ApplicationDirectoryScope>(m_directory.Path());
        Utilities::StartLogFile(m_directory.Path(), 1 << 20);
    }
    void TearDown() override { UnInit(); }

    // A scripted GigE camera, discovered and in the device list.
    void ListCamera()
    {
        Scripted::ScriptedSdk::Instance().AddDevice(Scripted::AreaCamera("A1", "Line3"));
        ASSERT_EQ(0, RegisterDeviceListUpdateListener(&host));
        ASSERT_EQ(0, RefreshCameraList(1));
        ASSERT_TRUE(host.WaitForCamera(ListedCamera));
    }

    HostRecorder host;
    TempDirectory m_directory;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
};

} // namespace

TEST_F(ApiRelay, SetFocusWithAnOutOfRangeTypeAnswersZeroAndChangesNothing)
{
    ListCamera();
    ASSERT_EQ(0, RegisterFocusUpdateListener(&host));

    EXPECT_EQ(0, SetFocus(static_cast<FOCUS_TYPE>(4), ListedCamera));
    EXPECT_EQ(0, SetFocus(static_cast<FOCUS_TYPE>(-1), ListedCamera));
    EXPECT_THAT(host.Events(), IsEmpty());

    EXPECT_EQ(0, SetFocus(FOCUS_CAMERA, ListedCamera));
    EXPECT_THAT(host.Events(), ElementsAre("focus 1 " + ListedCamera));
}

TEST_F(ApiRelay, SetCameraInfoWritesOnlyTheHostTexts)
{
    ListCamera();
    ASSERT_EQ(0, RegisterAcqStatisticUpdateListener(&host));
    const std::string name = GetCameraInfo(ListedCamera, CAM_NAME);

    EXPECT_EQ(-1, SetCameraInfo(ListedCamera, CAM_NAME, "Renamed"));
    EXPECT_EQ(name, GetCameraInfo(ListedCamera, CAM_NAME));
    EXPECT_THAT(host.Events(), IsEmpty());

    EXPECT_EQ(0, SetCameraInfo(ListedCamera, CAM_HOST_TEXT40, "left view"));
    EXPECT_EQ("left view", GetCameraInfo(ListedCamera, CAM_HOST_TEXT40));
    EXPECT_THAT(host.Events(), ElementsAre("statistics " + ListedCamera + " true"));

    EXPECT_EQ(-1, SetCameraInfo("Nobody(0)", CAM_HOST_TEXT40, "x"));
}

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

TEST_F(ApiRelay, SetSLImageShowModeNotifiesEvenForAnUnknownCamera)
{
    ASSERT_EQ(0, RegisterSLImageShowModeUpdateListener(&host));

    EXPECT_EQ(0, SetSLImageShowMode("Nobody(0)", 2));

    EXPECT_THAT(host.Events(), ElementsAre("show mode Nobody(0) 2"));
}

TEST_F(ApiRelay, CorrectionAndImportRelaysPassTheirArguments)
{
    ASSERT_EQ(0, RegisterCorrectionUpdateListener(&host));
    ASSERT_EQ(0, RegisterImportUpdateListener(&host));

    EXPECT_EQ(0, NotifyCorrection(ListedCamera, 4, 1.5f, &host));
    NotifyImportUpdate("scene.ini");

    EXPECT_THAT(host.Events(), ElementsAre("correction " + ListedCamera + " 4 1.500000 data", "import scene.ini"));
}

TEST_F(ApiRelay, EveryRegistrationRefusesANullListener)
{
    const std::vector<std::function<int()>> calls = {
        [] { return RegisterTLTypeUpdateListener(nullptr); },
        [] { return UnRegisterTLTypeUpdateListerner(nullptr); },
        [] { return RegisterDeviceListUpdateListener(nullptr); },
        [] { return UnRegisterDeviceListUpdateListener(nullptr); },
        [] { return RegisterFocusUpdateListener(nullptr); },
        [] { return UnRegisterFocusUpdateListener(nullptr); },
        [] { return RegisterLayoutUpdateListener(nullptr); },
        [] { return UnRegisterLayoutUpdateListener(nullptr); },
        [] { return RegisterImageUpdateListener("A", nullptr); },
        [] { return UnRegisterImageUpdateListener("A", nullptr); },
        [] { return RegisterImageModeUpdateListener(nullptr); },
        [] { return UnRegisterImageModeUpdateListener(nullptr); },
        [] { return RegisterSLImageShowModeUpdateListener(nullptr); },
        [] { return UnRegisterSLImageShowModeUpdateListener(nullptr); },
        [] { return RegisterAcqStatisticUpdateListener(nullptr); },
        [] { return UnRegisterAcqStatisticUpdateListener(nullptr); },
        [] { return RegisterCardTimerNodeUpdateListener("card", "Node", 100, nullptr); },
        [] { return UnRegisterCardTimerNodeUpdateListener("card", "Node", 100, nullptr); },
        [] { return RegisterCameraTimerNodeUpdateListener("A", "Node", 100, nullptr); },
        [] { return UnRegisterCameraTimerNodeUpdateListener("A", "Node", 100, nullptr); },
        [] { return RegisterImportUpdateListener(nullptr); },
        [] { return UnRegisterImportUpdateListener(nullptr); },
        [] { return RegisterLoggerUpdateListener(nullptr); },
        [] { return UnRegisterLoggerUpdateListener(nullptr); },
        [] { return RegisterROIUpdateListener(nullptr); },
        [] { return UnRegisterROIUpdateListener(nullptr); },
        [] { return RegisterCorrectionUpdateListener(nullptr); },
        [] { return UnRegisterCorrectionUpdateListener(nullptr); },
        [] { return RegisterLangUpdateListener(nullptr); },
        [] { return UnRegisterLangUpdateListener(nullptr); },
        [] { return RegisterCameraIdUpdateListener(nullptr); },
        [] { return UnRegisterCameraIdUpdateListener(nullptr); },
    };
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(-1, calls[i]()) << "call " << i;
    }
}

TEST_F(ApiRelay, RegisteredListenersHearTheirEventsUntilUnregistered)
{
    ASSERT_EQ(0, RegisterTLTypeUpdateListener(&host));
    ASSERT_EQ(0, RegisterLayoutUpdateListener(&host));
    ASSERT_EQ(0, RegisterLangUpdateListener(&host));
    ASSERT_EQ(0, RegisterLangUpdateListener(&host)); // twice: heard twice

    SetTLTypeList(8);
    SetImgLayout(static_cast<LAYOUT_TYPE>(4));
    SetLang("German");

    EXPECT_EQ(0, UnRegisterTLTypeUpdateListerner(&host));
    EXPECT_EQ(0, UnRegisterLayoutUpdateListener(&host));
    EXPECT_EQ(0, UnRegisterLangUpdateListener(&host)); // one call removes both
    SetTLTypeList(2);
    SetImgLayout(static_cast<LAYOUT_TYPE>(5));
    SetLang("English");

    EXPECT_THAT(host.Events(), ElementsAre("mask 8", "layout 4", "language German", "language German"));
    EXPECT_EQ(static_cast<LAYOUT_TYPE>(5), GetImgLayout());
    EXPECT_EQ("English", GetLang());
    EXPECT_EQ(2u, GetTLTypeList());
}

TEST_F(ApiRelay, HostLoggingReachesLoggerListenersWithTheLevelWord)
{
    ASSERT_EQ(0, RegisterLoggerUpdateListener(&host));

    EXPECT_EQ(0, VLogDebug("viewer", "d", 1));
    EXPECT_EQ(0, VLogInfo("viewer", "i", 1));
    EXPECT_EQ(0, VLogWarning("viewer", "w", 1));
    EXPECT_EQ(0, VLogError("viewer", "e", 1));
    EXPECT_EQ(0, VLogDeadly("viewer", "x", 1));
    EXPECT_EQ(0, VLogError("viewer", "quiet", 0));

    EXPECT_THAT(host.Events(), ElementsAre("log Debug viewer: d", "log Info viewer: i", "log Warning viewer: w",
                                           "log Error viewer: e", "log Deadly viewer: x"));
}

TEST_F(ApiRelay, AThrowingListenerBecomesTheGenericFailure)
{
    ThrowingRoiListener throwing;
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
