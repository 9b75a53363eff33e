#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "events/EventManager.h"

using namespace ViewerBiz3;

namespace {

// One host object that listens to everything and writes down what it heard.
struct RecordingListener : public ITLTypeUpdate,
                           public IDeviceListUpdate,
                           public IFocusUpdate,
                           public ILayoutUpdate,
                           public IImageUpdate,
                           public IImageModeUpdate,
                           public ISLImageShowModeUpdate,
                           public IAcqStatisticUpdate,
                           public ITimerNodeUpdate,
                           public IImportUpdate,
                           public ILoggerUpdate,
                           public IROIDrawUpdate,
                           public ICorrectionUpdate,
                           public ILangUpdate,
                           public ICameraIdUpdate {
    void OnTLTypeUpdate(unsigned long long mask) override { Record("tl " + std::to_string(mask)); }
    void OnDeviceListUpdate(int, std::vector<std::string>, std::vector<std::string>) override { Record("devices"); }
    void OnFocusUpdate(FOCUS_TYPE type, std::string id) override { Record("focus " + std::to_string(type) + " " + id); }
    void OnLayoutUpdate(LAYOUT_TYPE layout) override { Record("layout " + std::to_string(layout)); }
    void OnImageUpdate(std::string key, void*, int, int) override { Record("image " + key); }
    void OnImageModeUpdate(std::string key, int) override { Record("mode " + key); }
    void OnSLImageShowModeUpdate(std::string id, int) override { Record("show " + id); }
    void OnAcqStatisticUpdate(std::string name, bool) override { Record("statistics " + name); }
    void OnTimerNodeUpdate(std::string id, std::string, std::string value) override { Record(id + " " + value); }
    void OnImportUpdate(std::string text) override { Record("import " + text); }
    void OnLoggerUpdate(std::string source, std::string, std::string) override { Record("log " + source); }
    void OnROIDrawUpdate(std::string id, int, int, int, int, int, int&, bool&, int, int) override { Record(id); }
    void OnCorrectionUpdate(std::string id, int, float, void*) override { Record("correction " + id); }
    void OnLangUpdate(std::string language) override { Record("lang " + language); }
    void OnCameraIdUpdate(std::string oldId, std::string) override { Record("cameraId " + oldId); }

    void Record(const std::string& event) { heard.push_back(event); }
    std::vector<std::string> heard;
};

// How a test reaches one of the sixteen lists through the registry's own members.
struct ListAccess {
    std::string name;
    std::function<int(EventManager&, RecordingListener*)> add;
    std::function<int(EventManager&, RecordingListener*)> remove;
    std::function<void(EventManager&)> notify;
};

// A list whose register and unregister members take only the listener.
template <typename Listener>
ListAccess List(std::string name, int (EventManager::*add)(Listener*), int (EventManager::*remove)(Listener*),
                std::function<void(EventManager&)> notify)
{
    return {std::move(name), [add](EventManager& e, RecordingListener* l) { return (e.*add)(l); },
            [remove](EventManager& e, RecordingListener* l) { return (e.*remove)(l); }, std::move(notify)};
}

std::vector<ListAccess> AllLists()
{
    using E = EventManager;
    return {
        List("TLType", &E::RegisterTLTypeUpdateListener, &E::UnRegisterTLTypeUpdateListener,
             [](E& e) { e.NotifyTLTypeUpdateListener(15); }),
        List("DeviceList", &E::RegisterDeviceListUpdateListener, &E::UnRegisterDeviceListUpdateListener,
             [](E& e) { e.NotifyDeviceListUpdateListener(1, {"eth0"}, {"Cam(1)"}); }),
        List("Focus", &E::RegisterFocusUpdateListener, &E::UnRegisterFocusUpdateListener,
             [](E& e) { e.NotifyFocusUpdateListener(FOCUS_CAMERA, "Cam(1)"); }),
        List("Layout", &E::RegisterLayoutUpdateListener, &E::UnRegisterLayoutUpdateListener,
             [](E& e) { e.NotifyLayoutUpdateListener(static_cast<LAYOUT_TYPE>(4)); }),
        {"Image", [](E& e, auto* l) { return e.RegisterImageUpdateListener("Cam(1)", l); },
         [](E& e, auto* l) { return e.UnRegisterImageUpdateListener("Cam(1)", l); },
         [](E& e) { e.NotifyImageUpdateListener("Cam(1)", nullptr, 0, 0); }},
        List("ImageMode", &E::RegisterImageModeUpdateListener, &E::UnRegisterImageModeUpdateListener,
             [](E& e) { e.NotifyImageModeUpdateListener("Cam(1)", 2); }),
        List("SLImageShowMode", &E::RegisterSLImageShowModeUpdateListener, &E::UnRegisterSLImageShowModeUpdateListener,
             [](E& e) { e.NotifySLImageShowModeUpdateListener("SL(1)", 1); }),
        List("AcqStatistic", &E::RegisterAcqStatisticUpdateListener, &E::UnRegisterAcqStatisticUpdateListener,
             [](E& e) { e.NotifyAcqStatisticUpdateListener("Cam", false); }),
        {"CardTimerNode", [](E& e, auto* l) { return e.RegisterCardTimerNodeUpdateListener("Card", "Temp", 1000, l); },
         [](E& e, auto* l) { return e.UnRegisterCardTimerNodeUpdateListener("Card", "Temp", 1000, l); },
         [](E& e) { e.NotifyCardTimerNodeUpdateListener("Card", "Temp", "40"); }},
        {"CameraTimerNode",
         [](E& e, auto* l) { return e.RegisterCameraTimerNodeUpdateListener("Cam", "Temp", 1000, l); },
         [](E& e, auto* l) { return e.UnRegisterCameraTimerNodeUpdateListener("Cam", "Temp", 1000, l); },
         [](E& e) { e.NotifyCameraTimerNodeUpdateListener("Cam", "Temp", "41"); }},
        List("Import", &E::RegisterImportUpdateListener, &E::UnRegisterImportUpdateListener,
             [](E& e) { e.NotifyImportUpdateListener("file.xml"); }),
        List("Logger", &E::RegisterLoggerUpdateListener, &E::UnRegisterLoggerUpdateListener,
             [](E& e) { e.NotifyLoggerUpdateListener("Cam", "Info", "opened"); }),
        List("ROI", &E::RegisterROIUpdateListener, &E::UnRegisterROIUpdateListener,
             [](E& e) {
                 int index = 0;
                 bool result = false;
                 e.NotifyROIUpdateListener("Cam", 1, 2, 3, 4, 0, index, result, 0, 0);
             }),
        List("Correction", &E::RegisterCorrectionUpdateListener, &E::UnRegisterCorrectionUpdateListener,
             [](E& e) { e.NotifyCorrectionUpdateListener("Cam", 1, 2.0f, nullptr); }),
        List("Lang", &E::RegisterLangUpdateListener, &E::UnRegisterLangUpdateListener,
             [](E& e) { e.NotifyLangUpdateListener("Chinese"); }),
        List("CameraId", &E::RegisterCameraIdUpdateListener, &E::UnRegisterCameraIdUpdateListener,
             [](E& e) { e.NotifyCameraIdUpdateListener("Old(1)", "New"); }),
    };
}

using EveryListenerList = ::testing::TestWithParam<ListAccess>;

// Registering twice means hearing twice until one unregister removes both; unregistering a stranger changes nothing;
// ClearAll silences the list yet it takes new listeners afterwards, which hear this list's notification and no other.
TEST_P(EveryListenerList, RegistrationsCountUntilUnregisteredOrCleared)
{
    const ListAccess& list = GetParam();
    EventManager events;
    RecordingListener host, stranger;
    EXPECT_EQ(0, list.add(events, &host));
    EXPECT_EQ(0, list.add(events, &host));
    EXPECT_EQ(0, list.remove(events, &stranger));
    list.notify(events);
    ASSERT_EQ(2u, host.heard.size());
    EXPECT_EQ(host.heard[0], host.heard[1]);
    EXPECT_EQ(0, list.remove(events, &host)); // both registrations go
    list.notify(events);
    EXPECT_EQ(2u, host.heard.size());

    EXPECT_EQ(0, list.add(events, &host));
    events.ClearAll();
    list.notify(events);
    EXPECT_EQ(2u, host.heard.size());
    EXPECT_EQ(0, list.add(events, &stranger));
    for (const ListAccess& any : AllLists()) {
        any.notify(events);
    }
    EXPECT_EQ(std::vector<std::string>{host.heard[0]}, stranger.heard);
}

INSTANTIATE_TEST_SUITE_P(Registry, EveryListenerList, ::testing::ValuesIn(AllLists()),
                         [](const ::testing::TestParamInfo<ListAccess>& info) { return info.param.name; });

// Each list has a mutex of its own: a callback may change other lists.
TEST(ListenerConcurrency, ListenerMayChangeOtherListsFromInsideItsCallback)
{
    EventManager events;
    RecordingListener language;
    struct RearrangingListener : ILayoutUpdate {
        std::function<void()> rearrange;
        void OnLayoutUpdate(LAYOUT_TYPE) override { rearrange(); }
    } rearranging;
    rearranging.rearrange = [&] { events.UnRegisterLangUpdateListener(&language); };
    events.RegisterLangUpdateListener(&language);
    events.RegisterLayoutUpdateListener(&rearranging);

    events.NotifyLayoutUpdateListener(LAYOUT_DEFAULT);
    events.NotifyLangUpdateListener("German");
    EXPECT_TRUE(language.heard.empty());
}

// A viewer may show or hide a view while cameras grab: the image list changes under running
// notifications, and a listener whose unregister call returned is never called again.
TEST(ListenerConcurrency, ImageListChangesWhileNotifiedAndUnregisterIsFinal)
{
    class GuardedListener : public IImageUpdate {
    public:
        void OnImageUpdate(std::string, void*, int, int) override
        {
            if (!m_registered.load()) {
                m_lateCalls++;
            }
            std::this_thread::yield();
        }
        std::atomic<bool> m_registered{false};
        std::atomic<int> m_lateCalls{0};
    } listener;
    EventManager events;
    std::atomic<bool> stop{false};
    std::thread camera([&events, &stop] {
        while (!stop.load()) {
            events.NotifyImageUpdateListener("Cam", nullptr, 0, 0);
        }
    });
    for (int round = 0; round < 300; ++round) {
        listener.m_registered = true;
        events.RegisterImageUpdateListener("Cam", &listener);
        std::this_thread::yield();
        events.UnRegisterImageUpdateListener("Cam", &listener);
        listener.m_registered = false;
    }
    stop = true;
    camera.join();
    EXPECT_EQ(0, listener.m_lateCalls);
}

} // namespace
