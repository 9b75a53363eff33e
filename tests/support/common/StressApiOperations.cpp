#include "support/common/StressApiOperations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

#include "ZylImage.h"

using namespace ViewerBiz3;

namespace {

template <typename Item>
const Item& PickFrom(const std::vector<Item>& items, std::mt19937& random)
{
    return items[std::uniform_int_distribution<std::size_t>(0, items.size() - 1)(random)];
}

int PickNumber(std::mt19937& random, int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(random);
}

// One entry per list of StressListener: (register, unregister).
std::vector<std::pair<std::function<int(StressListener&)>, std::function<int(StressListener&)>>> ListenerLists()
{
    return {
        {[](StressListener& l) { return RegisterTLTypeUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterTLTypeUpdateListerner(&l); }},
        {[](StressListener& l) { return RegisterDeviceListUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterDeviceListUpdateListener(&l); }},
        {[](StressListener& l) { return RegisterFocusUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterFocusUpdateListener(&l); }},
        {[](StressListener& l) { return RegisterLayoutUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterLayoutUpdateListener(&l); }},
        {[](StressListener& l) { return RegisterImageModeUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterImageModeUpdateListener(&l); }},
        {[](StressListener& l) { return RegisterSLImageShowModeUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterSLImageShowModeUpdateListener(&l); }},
        {[](StressListener& l) { return RegisterImportUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterImportUpdateListener(&l); }},
        {[](StressListener& l) { return RegisterLoggerUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterLoggerUpdateListener(&l); }},
        {[](StressListener& l) { return RegisterROIUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterROIUpdateListener(&l); }},
        {[](StressListener& l) { return RegisterCorrectionUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterCorrectionUpdateListener(&l); }},
        {[](StressListener& l) { return RegisterLangUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterLangUpdateListener(&l); }},
        {[](StressListener& l) { return RegisterCameraIdUpdateListener(&l); },
         [](StressListener& l) { return UnRegisterCameraIdUpdateListener(&l); }},
    };
}

// Lets a call through at most once per period, over all threads.
class CallThrottle {
public:
    explicit CallThrottle(std::chrono::milliseconds period) : m_period(period) {}
    bool Due()
    {
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        auto last = m_last.load();
        const auto period = std::chrono::duration_cast<std::chrono::steady_clock::duration>(m_period).count();
        return now - last >= period && m_last.compare_exchange_strong(last, now);
    }

private:
    std::chrono::milliseconds m_period;
    std::atomic<std::chrono::steady_clock::rep> m_last{0};
};

std::shared_ptr<CallThrottle> Throttle(std::chrono::milliseconds period)
{
    return std::make_shared<CallThrottle>(period);
}

} // namespace

void StressListener::OnLoggerUpdate(std::string, std::string, std::string message)
{
    ++events;
    if (message == "Camera is lost.") {
        ++lossLines;
    }
}

void StressImageSink::OnImageUpdate(std::string, void* image, int, int)
{
    if (image != nullptr) {
        ++frames;
        static_cast<ZYLGENICAM::IImage*>(image)->Release();
    }
}

std::vector<std::string> StressAllParameters()
{
    std::vector<std::string> values;
    for (int key = 0; key <= 33; ++key) {
        values.push_back(GetParamterInfo(static_cast<PARAMETER_INFO>(key)));
    }
    return values;
}

std::vector<std::string> StressCloseAllAndUnInit(StressWatchdog& watchdog)
{
    watchdog.Phase("closing");
    for (const std::string& id : GetOpenedCameraIds()) {
        StopGrab(id);
        const int closed = CloseCamera(id);
        // A loss the watchdog notices meanwhile drops the camera itself: then it is unknown.
        if (closed != 0) {
            const std::vector<std::string> stillOpen = GetOpenedCameraIds();
            EXPECT_EQ(-1, closed) << id;
            EXPECT_EQ(stillOpen.end(), std::find(stillOpen.begin(), stillOpen.end(), id)) << id;
        }
    }
    EXPECT_TRUE(GetOpenedCameraIds().empty());
    std::vector<std::string> settings = StressAllParameters();
    watchdog.Phase("UnInit");
    EXPECT_EQ(0, UnInit());
    watchdog.Phase("after UnInit");
    return settings;
}

void StressRegisterAll(StressListener& listener)
{
    for (const auto& list : ListenerLists()) {
        list.first(listener);
    }
}

void StressUnRegisterAll(StressListener& listener)
{
    for (const auto& list : ListenerLists()) {
        list.second(listener);
    }
}

void StressOutcomes::Print() const
{
    std::printf("stress: %llu opens, %llu grab starts and %llu renames succeeded\n",
                static_cast<unsigned long long>(opens.load()), static_cast<unsigned long long>(grabs.load()),
                static_cast<unsigned long long>(renames.load()));
}

std::vector<StressOperation> StressApiOperations(const StressScene& scene, StressListener& listener,
                                                 StressOutcomes& outcomes)
{
    auto id = [&scene](std::mt19937& random) { return PickFrom(scene.cameraIds, random); };
    // Closing and stopping happen a few times a second whatever the call rate, so cameras stay
    // open and grabbing for a second or more: long enough to deliver frames and for the
    // library to notice a loss on its own. Between two, the host just asks for the open cameras.
    std::vector<StressOperation> operations = {
        {"RefreshCameraList", [&scene](std::mt19937&) { RefreshCameraList(scene.refreshTypes); }},
        {"SetTLTypeList", [&scene](std::mt19937&) { SetTLTypeList(scene.transportMask); }},
        {"OpenCamera", [id, &outcomes](std::mt19937& r) { outcomes.opens += OpenCamera(id(r)) == 0 ? 1 : 0; }, 3},
        {"CloseCamera",
         [id, close = Throttle(std::chrono::milliseconds(400))](std::mt19937& r) {
             if (close->Due()) {
                 CloseCamera(id(r));
             } else {
                 GetOpenedCameraIds();
             }
         }},
        {"StartGrab", [id, &outcomes](std::mt19937& r) { outcomes.grabs += StartGrab(id(r)) == 0 ? 1 : 0; }, 3},
        {"StopGrab",
         [id, stop = Throttle(std::chrono::milliseconds(250))](std::mt19937& r) {
             if (stop->Due()) {
                 StopGrab(id(r));
             } else {
                 GetOpenedCameraIds();
             }
         }},
        {"GetOpenedCameraIds", [](std::mt19937&) { GetOpenedCameraIds(); }},
        {"GetCameraInfo",
         [id](std::mt19937& r) { GetCameraInfo(id(r), static_cast<CAM_INFO>(PickNumber(r, -1, 70))); }},
        {"SetCameraInfo",
         [id](std::mt19937& r) {
             SetCameraInfo(id(r), static_cast<CAM_INFO>(PickNumber(r, 40, 43)), "note " + std::to_string(r() % 100));
         }},
        {"GetCameraNodeValue",
         [id, &scene](std::mt19937& r) {
             std::string value;
             GetCameraNodeValue(id(r), PickFrom(scene.nodes, r).name, value);
         }},
        {"SetCameraNodeValue",
         [id, &scene](std::mt19937& r) {
             const StressNode& node = PickFrom(scene.nodes, r);
             SetCameraNodeValue(id(r), node.name, PickFrom(node.values, r));
         }},
        {"SetFocus", [id](std::mt19937& r) { SetFocus(static_cast<FOCUS_TYPE>(PickNumber(r, 0, 4)), id(r)); }},
        {"ModifyCameraId",
         [&scene, &outcomes](std::mt19937& r) {
             const auto& rename = PickFrom(scene.renames, r);
             outcomes.renames += ModifyCameraId(rename.first, rename.second) == 0 ? 1 : 0;
         }},
        {"CameraImageMode",
         [id](std::mt19937& r) {
             SetCameraImageMode(id(r), PickNumber(r, 0, 2), r() % 2 == 0);
             GetCameraImageMode(id(r));
         }},
        {"SLImageShowMode",
         [id](std::mt19937& r) {
             SetSLImageShowMode(id(r), PickNumber(r, 0, 3));
             GetSLImageShowMode(id(r));
         }},
        {"SetParamterInfo",
         [](std::mt19937& r) {
             SetParamterInfo(static_cast<PARAMETER_INFO>(PickNumber(r, 0, 33)), "value" + std::to_string(r() % 1000));
         }},
        {"GetParamterInfo",
         [](std::mt19937& r) { GetParamterInfo(static_cast<PARAMETER_INFO>(PickNumber(r, 0, 33))); }},
        {"LayoutAndLanguage",
         [](std::mt19937& r) {
             SetImgLayout(static_cast<LAYOUT_TYPE>(PickNumber(r, 1, 4)));
             SetLang(r() % 2 == 0 ? "en" : "zh");
             GetImgLayout();
             GetLang();
         }},
        {"RegisterOrUnRegister",
         [&listener](std::mt19937& r) {
             static const auto lists = ListenerLists();
             const auto& list = PickFrom(lists, r);
             if (r() % 2 == 0) {
                 list.first(listener);
             } else {
                 list.second(listener);
             }
         }},
        {"HostRelays",
         [id](std::mt19937& r) {
             int index = 0;
             bool result = false;
             NotifyImportUpdate("import");
             NotifyCorrection(id(r), 1, 0.5f, nullptr);
             DrawROI(id(r), 1, 2, 3, 4, index, result, 0, 0);
             VLogInfo("stress", "host line", static_cast<int>(r() % 2));
         }},
    };
    return operations;
}
