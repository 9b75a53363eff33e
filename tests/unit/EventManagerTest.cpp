#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "events/EventManager.h"

using namespace ViewerBiz3;

namespace {

// One host object that listens to everything and writes down what it heard.
class RecordingListener : public ITLTypeUpdate,
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
public:
    explicit RecordingListener(std::string name = "listener") : m_name(std::move(name)) {}

    void OnTLTypeUpdate(unsigned long long mask) override { Record("tl " + std::to_string(mask)); }
    void OnDeviceListUpdate(int kind, std::vector<std::string>, std::vector<std::string>) override
    {
        Record("devices " + std::to_string(kind));
    }
    void OnFocusUpdate(FOCUS_TYPE type, std::string deviceId) override
    {
        Record("focus " + std::to_string(type) + " " + deviceId);
    }
    void OnLayoutUpdate(LAYOUT_TYPE layout) override { Record("layout " + std::to_string(layout)); }
    void OnImageUpdate(std::string key, void* image, int extra1, int extra2) override
    {
        Record("image " + key + (image ? " frame " : " null ") + std::to_string(extra1) + " " + std::to_string(extra2));
    }
    void OnImageModeUpdate(std::string key, int) override { Record("mode " + key); }
    void OnSLImageShowModeUpdate(std::string id, int) override { Record("show " + id); }
    void OnAcqStatisticUpdate(std::string name, bool) override { Record("statistics " + name); }
    void OnTimerNodeUpdate(std::string id, std::string node, std::string value) override
    {
        Record("timer " + id + " " + node + " " + value);
    }
    void OnImportUpdate(std::string text) override { Record("import " + text); }
    void OnLoggerUpdate(std::string source, std::string, std::string) override { Record("log " + source); }
    void OnROIDrawUpdate(std::string id, int, int, int, int, int, int&, bool&, int, int) override
    {
        Record("roi " + id);
    }
    void OnCorrectionUpdate(std::string id, int, float, void*) override { Record("correction " + id); }
    void OnLangUpdate(std::string language) override { Record("lang " + language); }
    void OnCameraIdUpdate(std::string oldId, std::string) override { Record("cameraId " + oldId); }

    std::vector<std::string> Events() const { return m_events; }

private:
    void Record(const std::string& event) { m_events.push_back(m_name + ": " + event); }

    std::string m_name;
    std::vector<std::string> m_events;
};

// How a test reaches one of the sixteen lists through the registry's own members.
struct ListAccess {
    std::string name;
    std::function<int(EventManager&, RecordingListener*)> add;
    std::function<int(EventManager&, RecordingListener*)> remove;
    std::function<void(EventManager&)> notify;
};

// Test names and failure messages show the list by name.
void PrintTo(const ListAccess& list, std::ostream* out)
{
    *out << list.name;
}

std::vector<ListAccess> AllLists()
{
    void* frame = reinterpret_cast<void*>(0x1);
    return {
        {"TLType", [](EventManager& e, auto* l) { return e.RegisterTLTypeUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterTLTypeUpdateListener(l); },
         [](EventManager& e) { e.NotifyTLTypeUpdateListener(15); }},
        {"DeviceList", [](EventManager& e, auto* l) { return e.RegisterDeviceListUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterDeviceListUpdateListener(l); },
         [](EventManager& e) { e.NotifyDeviceListUpdateListener(1, {"eth0"}, {"Cam(1)"}); }},
        {"Focus", [](EventManager& e, auto* l) { return e.RegisterFocusUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterFocusUpdateListener(l); },
         [](EventManager& e) { e.NotifyFocusUpdateListener(FOCUS_CAMERA, "Cam(1)"); }},
        {"Layout", [](EventManager& e, auto* l) { return e.RegisterLayoutUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterLayoutUpdateListener(l); },
         [](EventManager& e) { e.NotifyLayoutUpdateListener(static_cast<LAYOUT_TYPE>(4)); }},
        {"Image", [](EventManager& e, auto* l) { return e.RegisterImageUpdateListener("Cam(1)", l); },
         [](EventManager& e, auto* l) { return e.UnRegisterImageUpdateListener("Cam(1)", l); },
         [frame](EventManager& e) { e.NotifyImageUpdateListener("Cam(1)", frame, 0, 0); }},
        {"ImageMode", [](EventManager& e, auto* l) { return e.RegisterImageModeUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterImageModeUpdateListener(l); },
         [](EventManager& e) { e.NotifyImageModeUpdateListener("Cam(1)", 2); }},
        {"SLImageShowMode", [](EventManager& e, auto* l) { return e.RegisterSLImageShowModeUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterSLImageShowModeUpdateListener(l); },
         [](EventManager& e) { e.NotifySLImageShowModeUpdateListener("SL(1)", 1); }},
        {"AcqStatistic", [](EventManager& e, auto* l) { return e.RegisterAcqStatisticUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterAcqStatisticUpdateListener(l); },
         [](EventManager& e) { e.NotifyAcqStatisticUpdateListener("Cam", false); }},
        {"CardTimerNode",
         [](EventManager& e, auto* l) { return e.RegisterCardTimerNodeUpdateListener("Card", "Temp", 1000, l); },
         [](EventManager& e, auto* l) { return e.UnRegisterCardTimerNodeUpdateListener("Card", "Temp", 1000, l); },
         [](EventManager& e) { e.NotifyCardTimerNodeUpdateListener("Card", "Temp", "40"); }},
        {"CameraTimerNode",
         [](EventManager& e, auto* l) { return e.RegisterCameraTimerNodeUpdateListener("Cam", "Temp", 1000, l); },
         [](EventManager& e, auto* l) { return e.UnRegisterCameraTimerNodeUpdateListener("Cam", "Temp", 1000, l); },
         [](EventManager& e) { e.NotifyCameraTimerNodeUpdateListener("Cam", "Temp", "41"); }},
        {"Import", [](EventManager& e, auto* l) { return e.RegisterImportUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterImportUpdateListener(l); },
         [](EventManager& e) { e.NotifyImportUpdateListener("file.xml"); }},
        {"Logger", [](EventManager& e, auto* l) { return e.RegisterLoggerUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterLoggerUpdateListener(l); },
         [](EventManager& e) { e.NotifyLoggerUpdateListener("Cam", "Info", "opened"); }},
        {"ROI", [](EventManager& e, auto* l) { return e.RegisterROIUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterROIUpdateListener(l); },
         [](EventManager& e) {
             int index = 0;
             bool result = false;
             e.NotifyROIUpdateListener("Cam", 1, 2, 3, 4, 0, index, result, 0, 0);
         }},
        {"Correction", [](EventManager& e, auto* l) { return e.RegisterCorrectionUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterCorrectionUpdateListener(l); },
         [](EventManager& e) { e.NotifyCorrectionUpdateListener("Cam", 1, 2.0f, nullptr); }},
        {"Lang", [](EventManager& e, auto* l) { return e.RegisterLangUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterLangUpdateListener(l); },
         [](EventManager& e) { e.NotifyLangUpdateListener("Chinese"); }},
        {"CameraId", [](EventManager& e, auto* l) { return e.RegisterCameraIdUpdateListener(l); },
         [](EventManager& e, auto* l) { return e.UnRegisterCameraIdUpdateListener(l); },
         [](EventManager& e) { e.NotifyCameraIdUpdateListener("Old(1)", "New"); }},
    };
}

class EveryListenerList : public ::testing::TestWithParam<ListAccess> {
protected:
    EventManager events;
};

// Registering twice means hearing twice until one unregister removes both;
// unregistering a stranger changes nothing; ClearAll silences the list yet it
// takes new listeners afterwards.
TEST_P(EveryListenerList, RegistrationsCountUntilUnregisteredOrCleared)
{
    const ListAccess& list = GetParam();
    RecordingListener host, stranger;
    EXPECT_EQ(0, list.add(events, &host));
    EXPECT_EQ(0, list.add(events, &host));
    EXPECT_EQ(0, list.remove(events, &stranger));
    list.notify(events);
    ASSERT_EQ(2u, host.Events().size());
    EXPECT_EQ(host.Events()[0], host.Events()[1]);
    EXPECT_EQ(0, list.remove(events, &host)); // both registrations go
    list.notify(events);
    EXPECT_EQ(2u, host.Events().size());

    EXPECT_EQ(0, list.add(events, &host));
    events.ClearAll();
    list.notify(events);
    EXPECT_EQ(2u, host.Events().size());
    EXPECT_EQ(0, list.add(events, &stranger));
    list.notify(events);
    EXPECT_EQ(1u, stranger.Events().size());
}

INSTANTIATE_TEST_SUITE_P(Registry, EveryListenerList, ::testing::ValuesIn(AllLists()),
                         [](const ::testing::TestParamInfo<ListAccess>& info) { return info.param.name; });

TEST(ListenerLists, EachNotificationReachesOnlyItsOwnList)
{
    EventManager events;
    const std::vector<ListAccess> lists = AllLists();
    std::vector<std::unique_ptr<RecordingListener>> hosts;
    for (const ListAccess& list : lists) {
        hosts.push_back(std::make_unique<RecordingListener>(list.name));
        list.add(events, hosts.back().get());
    }
    for (const ListAccess& list : lists) {
        list.notify(events);
    }
    for (const auto& host : hosts) {
        EXPECT_EQ(1u, host->Events().size());
    }
    EXPECT_EQ("CardTimerNode: timer Card Temp 40", hosts[8]->Events().at(0));
    EXPECT_EQ("CameraTimerNode: timer Cam Temp 41", hosts[9]->Events().at(0));
}

TEST(ListenerLists, ImageListenerRegisteredForOneCameraReceivesEveryCamera)
{
    EventManager events;
    RecordingListener viewer;
    events.RegisterImageUpdateListener("A(1)", &viewer);
    events.NotifyImageUpdateListener("B(2)", nullptr, 3, 4);
    EXPECT_EQ(std::vector<std::string>{"listener: image B(2) null 3 4"}, viewer.Events());

    // Unregistering under another camera's name still removes it.
    events.UnRegisterImageUpdateListener("C(3)", &viewer);
    events.NotifyImageUpdateListener("A(1)", nullptr, 0, 0);
    EXPECT_EQ(1u, viewer.Events().size());
}

TEST(ListenerLists, UnregisterKeepsTheOrderOfTheRemainingListeners)
{
    EventManager events;
    std::vector<std::string> calls;
    class OrderListener : public ILangUpdate {
    public:
        OrderListener(std::string name, std::vector<std::string>& calls) : m_name(std::move(name)), m_calls(calls) {}
        void OnLangUpdate(std::string) override { m_calls.push_back(m_name); }

    private:
        std::string m_name;
        std::vector<std::string>& m_calls;
    } a("a", calls), b("b", calls), c("c", calls);
    events.RegisterLangUpdateListener(&a);
    events.RegisterLangUpdateListener(&b);
    events.RegisterLangUpdateListener(&a);
    events.RegisterLangUpdateListener(&c);
    events.UnRegisterLangUpdateListener(&a);
    events.NotifyLangUpdateListener("English");
    EXPECT_EQ((std::vector<std::string>{"b", "c"}), calls);
}

// A listener that takes its string argument away must not leave the next
// listener with an empty one: every call gets its own copy.
TEST(ListenerNotifications, EveryListenerGetsItsOwnCopyOfEachString)
{
    class TakingListener : public ILoggerUpdate {
    public:
        void OnLoggerUpdate(std::string source, std::string level, std::string message) override
        {
            m_received.push_back(std::move(source) + "|" + std::move(level) + "|" + std::move(message));
        }
        std::vector<std::string> m_received;
    } first, second;
    EventManager events;
    events.RegisterLoggerUpdateListener(&first);
    events.RegisterLoggerUpdateListener(&second);
    events.NotifyLoggerUpdateListener("Cam(7)", "Error", "lost");
    EXPECT_EQ(std::vector<std::string>{"Cam(7)|Error|lost"}, first.m_received);
    EXPECT_EQ(std::vector<std::string>{"Cam(7)|Error|lost"}, second.m_received);

    class TakingDeviceList : public IDeviceListUpdate {
    public:
        void OnDeviceListUpdate(int, std::vector<std::string> first, std::vector<std::string>) override
        {
            m_sizes.push_back(first.size());
            std::vector<std::string> taken = std::move(first);
        }
        std::vector<std::size_t> m_sizes;
    } lists;
    events.RegisterDeviceListUpdateListener(&lists);
    events.RegisterDeviceListUpdateListener(&lists);
    events.NotifyDeviceListUpdateListener(0, {"eth0", "usbCard"}, {});
    EXPECT_EQ((std::vector<std::size_t>{2, 2}), lists.m_sizes);
}

TEST(ListenerNotifications, ThrowingListenerReleasesTheListAndStopsTheLoop)
{
    class ThrowingListener : public IImportUpdate {
    public:
        void OnImportUpdate(std::string) override { throw std::runtime_error("host failure"); }
    } thrower;
    RecordingListener after;
    EventManager events;
    events.RegisterImportUpdateListener(&thrower);
    events.RegisterImportUpdateListener(&after);
    EXPECT_THROW(events.NotifyImportUpdateListener("a.xml"), std::runtime_error);
    EXPECT_TRUE(after.Events().empty());

    // The list's mutex was released: the list can still be changed and notified.
    EXPECT_EQ(0, events.UnRegisterImportUpdateListener(&thrower));
    events.NotifyImportUpdateListener("b.xml");
    EXPECT_EQ(std::vector<std::string>{"listener: import b.xml"}, after.Events());
}

TEST(ListenerConcurrency, ListenerMayChangeOtherListsFromInsideItsCallback)
{
    EventManager events;
    RecordingListener language("language"), focus("focus");
    class RearrangingListener : public ILayoutUpdate {
    public:
        RearrangingListener(EventManager& events, RecordingListener& language, RecordingListener& focus)
            : m_events(events), m_language(language), m_focus(focus)
        {
        }
        void OnLayoutUpdate(LAYOUT_TYPE) override
        {
            m_events.UnRegisterLangUpdateListener(&m_language);
            m_events.RegisterFocusUpdateListener(&m_focus);
        }

    private:
        EventManager& m_events;
        RecordingListener& m_language;
        RecordingListener& m_focus;
    } rearranging(events, language, focus);
    events.RegisterLangUpdateListener(&language);
    events.RegisterLayoutUpdateListener(&rearranging);

    events.NotifyLayoutUpdateListener(LAYOUT_DEFAULT);
    events.NotifyLangUpdateListener("German");
    events.NotifyFocusUpdateListener(FOCUS_CARD, "Card(1)");
    EXPECT_TRUE(language.Events().empty());
    EXPECT_EQ(std::vector<std::string>{"focus: focus 2 Card(1)"}, focus.Events());
}

// While one thread sits in a logger callback, another thread must be able to
// change every other list: each list has a mutex of its own.
TEST(ListenerConcurrency, RegistrationOnAnotherListIsNotBlockedByARunningNotification)
{
    EventManager events;
    std::promise<void> entered;
    std::promise<void> release;
    std::shared_future<void> released = release.get_future().share();
    class BlockingLogger : public ILoggerUpdate {
    public:
        BlockingLogger(std::promise<void>& entered, std::shared_future<void> released)
            : m_entered(entered), m_released(std::move(released))
        {
        }
        void OnLoggerUpdate(std::string, std::string, std::string) override
        {
            m_entered.set_value();
            m_timedOut = m_released.wait_for(std::chrono::seconds(20)) != std::future_status::ready;
        }
        std::atomic<bool> m_timedOut{false};

    private:
        std::promise<void>& m_entered;
        std::shared_future<void> m_released;
    } blocking(entered, released);
    events.RegisterLoggerUpdateListener(&blocking);
    RecordingListener other;

    std::thread logging([&events] { events.NotifyLoggerUpdateListener("Cam", "Info", "busy"); });
    entered.get_future().wait();
    for (const ListAccess& list : AllLists()) {
        if (list.name == "Logger") {
            continue;
        }
        EXPECT_EQ(0, list.add(events, &other)) << list.name;
        EXPECT_EQ(0, list.remove(events, &other)) << list.name;
    }
    release.set_value();
    logging.join();
    EXPECT_FALSE(blocking.m_timedOut);
}

// A locked list runs its listeners one notification at a time; the image and
// statistics lists take no lock but must still deliver every call.
TEST(ListenerConcurrency, NotificationsFromSeveralThreadsAllArrive)
{
    class CountingListener : public ILoggerUpdate, public IImageUpdate, public IAcqStatisticUpdate {
    public:
        void OnLoggerUpdate(std::string, std::string, std::string) override
        {
            if (m_inLoggerCallback.exchange(true)) {
                m_overlaps++;
            }
            m_logs++;
            std::this_thread::yield();
            m_inLoggerCallback = false;
        }
        void OnImageUpdate(std::string, void*, int, int) override { m_images++; }
        void OnAcqStatisticUpdate(std::string, bool) override { m_statistics++; }

        std::atomic<bool> m_inLoggerCallback{false};
        std::atomic<int> m_overlaps{0};
        std::atomic<int> m_logs{0};
        std::atomic<int> m_images{0};
        std::atomic<int> m_statistics{0};
    } first, second;
    EventManager events;
    for (CountingListener* listener : {&first, &second}) {
        events.RegisterLoggerUpdateListener(listener);
        events.RegisterImageUpdateListener("any", listener);
        events.RegisterAcqStatisticUpdateListener(listener);
    }

    constexpr int threadCount = 4;
    constexpr int rounds = 500;
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&events, t] {
            for (int i = 0; i < rounds; ++i) {
                events.NotifyLoggerUpdateListener("Cam" + std::to_string(t), "Debug", std::to_string(i));
                events.NotifyImageUpdateListener("Cam" + std::to_string(t), nullptr, 0, 0);
                events.NotifyAcqStatisticUpdateListener("Cam" + std::to_string(t), false);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (CountingListener* listener : {&first, &second}) {
        EXPECT_EQ(threadCount * rounds, listener->m_logs);
        EXPECT_EQ(threadCount * rounds, listener->m_images);
        EXPECT_EQ(threadCount * rounds, listener->m_statistics);
    }
    // Both listeners share the logger list's mutex, so neither ever ran twice at once.
    EXPECT_EQ(0, first.m_overlaps);
    EXPECT_EQ(0, second.m_overlaps);
}

// A viewer may show or hide a view while cameras grab: the frame-path lists change under running
// notifications, and a listener whose unregister call returned is never called again.
TEST(ListenerConcurrency, FramePathListsChangeWhileNotifiedAndUnregisterIsFinal)
{
    class GuardedListener : public IImageUpdate, public IAcqStatisticUpdate {
    public:
        void OnImageUpdate(std::string, void*, int, int) override { Check(); }
        void OnAcqStatisticUpdate(std::string, bool) override { Check(); }
        void Check()
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
    std::vector<std::thread> cameras;
    for (int t = 0; t < 2; ++t) {
        cameras.emplace_back([&events, &stop] {
            while (!stop.load()) {
                events.NotifyImageUpdateListener("Cam", nullptr, 0, 0);
                events.NotifyAcqStatisticUpdateListener("Cam", false);
            }
        });
    }
    for (int round = 0; round < 300; ++round) {
        listener.m_registered = true;
        events.RegisterImageUpdateListener("Cam", &listener);
        events.RegisterAcqStatisticUpdateListener(&listener);
        std::this_thread::yield();
        events.UnRegisterImageUpdateListener("Cam", &listener);
        events.UnRegisterAcqStatisticUpdateListener(&listener);
        listener.m_registered = false;
    }
    stop = true;
    for (std::thread& camera : cameras) {
        camera.join();
    }
    EXPECT_EQ(0, listener.m_lateCalls);
}

} // namespace
