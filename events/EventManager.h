// The registry of the host's listener objects and the single place from which
// every event of the library reaches the host. Each list has its own mutex;
// no two of them are ever held together. The image and statistics lists, which
// acquisition threads walk for every frame, are snapshot lists instead: walked
// without a lock and changeable at any time.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ViewerBiz3Listeners.h"
#include "events/SnapshotListenerList.h"

// A null listener is refused; anything else is appended, duplicates included,
// so a listener registered twice is called twice.
template <typename Listener, typename Mutex, typename Vector>
int RegisterListener(Listener* listener, Mutex& mutex, Vector& listeners)
{
    if (listener == nullptr) {
        return -1;
    }
    std::lock_guard<Mutex> lock(mutex);
    listeners.push_back(listener);
    return 0;
}

// Removes every occurrence, keeping the order of the others, and gives the
// spare capacity back. Removing an absent listener is not an error.
template <typename Listener, typename Mutex, typename Vector>
int UnRegisterListener(Listener* listener, Mutex& mutex, Vector& listeners)
{
    if (listener == nullptr) {
        return -1;
    }
    std::lock_guard<Mutex> lock(mutex);
    listeners.erase(std::remove(listeners.begin(), listeners.end(), listener), listeners.end());
    listeners.shrink_to_fit();
    return 0;
}

// The list's mutex is held across the callbacks, so a listener must not
// register or unregister on the list that is calling it. The arguments are
// passed as lvalues on purpose: every by-value string parameter of the
// callback gets a fresh copy per listener, while reference parameters (the
// ROI out-values) bind to the caller's variables.
template <typename Listener, typename Mutex, typename Vector, typename... Params, typename... Args>
void NotifyListener(Mutex& mutex, Vector& listeners, void (Listener::*callback)(Params...), Args&&... args)
{
    std::lock_guard<Mutex> lock(mutex);
    for (Listener* listener : listeners) {
        (listener->*callback)(args...);
    }
}

class EventManager {
public:
    EventManager() = default;
    ~EventManager() = default;
    EventManager(const EventManager&) = delete;
    EventManager& operator=(const EventManager&) = delete;

    int RegisterTLTypeUpdateListener(ViewerBiz3::ITLTypeUpdate* listener);
    int UnRegisterTLTypeUpdateListener(ViewerBiz3::ITLTypeUpdate* listener);
    void NotifyTLTypeUpdateListener(unsigned long long tlTypeMask);

    int RegisterDeviceListUpdateListener(ViewerBiz3::IDeviceListUpdate* listener);
    int UnRegisterDeviceListUpdateListener(ViewerBiz3::IDeviceListUpdate* listener);
    void NotifyDeviceListUpdateListener(int kind, std::vector<std::string> first, std::vector<std::string> second);

    int RegisterFocusUpdateListener(ViewerBiz3::IFocusUpdate* listener);
    int UnRegisterFocusUpdateListener(ViewerBiz3::IFocusUpdate* listener);
    void NotifyFocusUpdateListener(ViewerBiz3::FOCUS_TYPE type, std::string deviceId);

    int RegisterLayoutUpdateListener(ViewerBiz3::ILayoutUpdate* listener);
    int UnRegisterLayoutUpdateListener(ViewerBiz3::ILayoutUpdate* listener);
    void NotifyLayoutUpdateListener(ViewerBiz3::LAYOUT_TYPE layout);

    // The camera identifier is not kept: every image listener hears every camera.
    int RegisterImageUpdateListener(std::string cameraId, ViewerBiz3::IImageUpdate* listener);
    int UnRegisterImageUpdateListener(std::string cameraId, ViewerBiz3::IImageUpdate* listener);
    // Called once per frame from acquisition threads; takes no lock. Returns how many listeners
    // were handed the image.
    std::size_t NotifyImageUpdateListener(std::string cameraKey, void* image, int extra1, int extra2);

    int RegisterImageModeUpdateListener(ViewerBiz3::IImageModeUpdate* listener);
    int UnRegisterImageModeUpdateListener(ViewerBiz3::IImageModeUpdate* listener);
    void NotifyImageModeUpdateListener(std::string cameraKey, int imageMode);

    int RegisterSLImageShowModeUpdateListener(ViewerBiz3::ISLImageShowModeUpdate* listener);
    int UnRegisterSLImageShowModeUpdateListener(ViewerBiz3::ISLImageShowModeUpdate* listener);
    void NotifySLImageShowModeUpdateListener(std::string cameraId, int showMode);

    int RegisterAcqStatisticUpdateListener(ViewerBiz3::IAcqStatisticUpdate* listener);
    int UnRegisterAcqStatisticUpdateListener(ViewerBiz3::IAcqStatisticUpdate* listener);
    // Called from acquisition threads; takes no lock.
    void NotifyAcqStatisticUpdateListener(std::string cameraName, bool fromSetInfo);

    // Card and node identifiers and the interval are not kept; nothing in the
    // library raises timer-node events, the lists exist for the interface.
    int RegisterCardTimerNodeUpdateListener(std::string cardId, std::string nodeName, int interval,
                                            ViewerBiz3::ITimerNodeUpdate* listener);
    int UnRegisterCardTimerNodeUpdateListener(std::string cardId, std::string nodeName, int interval,
                                              ViewerBiz3::ITimerNodeUpdate* listener);
    void NotifyCardTimerNodeUpdateListener(std::string deviceId, std::string nodeName, std::string nodeValue);

    int RegisterCameraTimerNodeUpdateListener(std::string cameraId, std::string nodeName, int interval,
                                              ViewerBiz3::ITimerNodeUpdate* listener);
    int UnRegisterCameraTimerNodeUpdateListener(std::string cameraId, std::string nodeName, int interval,
                                                ViewerBiz3::ITimerNodeUpdate* listener);
    void NotifyCameraTimerNodeUpdateListener(std::string deviceId, std::string nodeName, std::string nodeValue);

    int RegisterImportUpdateListener(ViewerBiz3::IImportUpdate* listener);
    int UnRegisterImportUpdateListener(ViewerBiz3::IImportUpdate* listener);
    void NotifyImportUpdateListener(std::string text);

    int RegisterLoggerUpdateListener(ViewerBiz3::ILoggerUpdate* listener);
    int UnRegisterLoggerUpdateListener(ViewerBiz3::ILoggerUpdate* listener);
    void NotifyLoggerUpdateListener(std::string source, std::string level, std::string message);

    int RegisterROIUpdateListener(ViewerBiz3::IROIDrawUpdate* listener);
    int UnRegisterROIUpdateListener(ViewerBiz3::IROIDrawUpdate* listener);
    // index and result are the caller's variables; each listener may overwrite them.
    void NotifyROIUpdateListener(std::string cameraId, int x, int y, int width, int height, int operation, int& index,
                                 bool& result, int extra1, int extra2);

    int RegisterCorrectionUpdateListener(ViewerBiz3::ICorrectionUpdate* listener);
    int UnRegisterCorrectionUpdateListener(ViewerBiz3::ICorrectionUpdate* listener);
    void NotifyCorrectionUpdateListener(std::string cameraId, int kind, float value, void* data);

    int RegisterLangUpdateListener(ViewerBiz3::ILangUpdate* listener);
    int UnRegisterLangUpdateListener(ViewerBiz3::ILangUpdate* listener);
    void NotifyLangUpdateListener(std::string language);

    int RegisterCameraIdUpdateListener(ViewerBiz3::ICameraIdUpdate* listener);
    int UnRegisterCameraIdUpdateListener(ViewerBiz3::ICameraIdUpdate* listener);
    void NotifyCameraIdUpdateListener(std::string oldId, std::string newName);

    // Empties every list one at a time; called first at shutdown. Once it returned, no listener
    // is called any more.
    void ClearAll();

private:
    std::vector<ViewerBiz3::ITLTypeUpdate*> m_tlTypeListeners;
    std::mutex m_tlTypeMutex;
    std::vector<ViewerBiz3::IDeviceListUpdate*> m_deviceListListeners;
    std::mutex m_deviceListMutex;
    std::vector<ViewerBiz3::IFocusUpdate*> m_focusListeners;
    std::mutex m_focusMutex;
    std::vector<ViewerBiz3::ILayoutUpdate*> m_layoutListeners;
    std::mutex m_layoutMutex;
    SnapshotListenerList<ViewerBiz3::IImageUpdate> m_imageListeners;
    std::vector<ViewerBiz3::IImageModeUpdate*> m_imageModeListeners;
    std::mutex m_imageModeMutex;
    std::vector<ViewerBiz3::ISLImageShowModeUpdate*> m_slImageShowModeListeners;
    std::mutex m_slImageShowModeMutex;
    SnapshotListenerList<ViewerBiz3::IAcqStatisticUpdate> m_acqStatisticListeners;
    std::vector<ViewerBiz3::ITimerNodeUpdate*> m_cardTimerNodeListeners;
    std::mutex m_cardTimerNodeMutex;
    std::vector<ViewerBiz3::ITimerNodeUpdate*> m_cameraTimerNodeListeners;
    std::mutex m_cameraTimerNodeMutex;
    std::vector<ViewerBiz3::IImportUpdate*> m_importListeners;
    std::mutex m_importMutex;
    std::vector<ViewerBiz3::ILoggerUpdate*> m_loggerListeners;
    std::mutex m_loggerMutex;
    std::vector<ViewerBiz3::IROIDrawUpdate*> m_roiListeners;
    std::mutex m_roiMutex;
    std::vector<ViewerBiz3::ICorrectionUpdate*> m_correctionListeners;
    std::mutex m_correctionMutex;
    std::vector<ViewerBiz3::ILangUpdate*> m_langListeners;
    std::mutex m_langMutex;
    std::vector<ViewerBiz3::ICameraIdUpdate*> m_cameraIdListeners;
    std::mutex m_cameraIdMutex;
};

extern EventManager m_event;
