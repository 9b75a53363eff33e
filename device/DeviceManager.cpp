// The singleton's life: construction, the shutdown sequence, the notifications
// and the deferred destruction of camera objects dropped from the maps.
#include "device/DeviceManager.h"

#include <chrono>
#include <functional>
#include <utility>

#include "camera/CLCamera.h"
#include "camera/Camera.h"
#include "device/Card.h"
#include "device/DeviceMaps.h"
#include "events/EventManager.h"
#include "log/Log.h"

DeviceManager* DeviceManager::m_deviceManager = nullptr;
std::mutex DeviceManager::m_mtx_manager;

namespace {

void PollEvery100Microseconds(const std::atomic<bool>& done, const std::function<void()>& afterSleep = {})
{
    while (!done.load()) {
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        if (afterSleep)
            afterSleep();
    }
}

} // namespace

DeviceManager* DeviceManager::getInstance()
{
    // No second test after locking: the host's single Init call makes creation race-free.
    if (m_deviceManager == nullptr) {
        std::lock_guard<std::mutex> lock(m_mtx_manager);
        m_deviceManager = new DeviceManager();
    }
    return m_deviceManager;
}

void DeviceManager::Release()
{
    if (m_deviceManager != nullptr) {
        delete m_deviceManager;
        m_deviceManager = nullptr;
    }
}

DeviceManager::DeviceManager()
{
    m_stop.store(false);
    m_idle.store(true);
    m_repeatPass.store(false);
    m_notificationsEnabled.store(true);
    m_refreshCondition = new std::condition_variable();
    Utilities::SetUpLogging();
    m_timerTicks.store(0);
    m_timerThread = std::thread([this] {
        m_timerEnded.store(false);
        TimerUpdateDeviceListFunction();
        // Last access to this object: the destructor frees it once it sees the flag.
        m_timerEnded.store(true);
    });
    m_timerThread.detach();
    SetCameraHost(this);
}

DeviceManager::~DeviceManager()
{
    StopBackgroundThreads();
    m_notificationsEnabled.store(false);
    for (const std::string& id : GetOpenedCardIds())
        CloseCard(id);
    for (const std::string& id : GetOpenedCameraIds())
        CloseCamera(id);
    SetCameraHost(nullptr);
    DestroyAllDevices();
    delete m_refreshCondition;
}

void DeviceManager::StopBackgroundThreads()
{
    m_idle.store(false);
    m_stop.store(true);
    m_refreshCondition->notify_one();
    { std::lock_guard<std::mutex> lock(m_timerMutex); }
    m_timerWake.notify_all();
    PollEvery100Microseconds(m_timerEnded);
    if (m_discoveryThread != nullptr) {
        // The wake-up is repeated because one sent before the thread waits would be lost.
        PollEvery100Microseconds(m_discoveryEnded, [this] { m_refreshCondition->notify_one(); });
        m_refreshCondition->notify_one();
        if (m_discoveryThread->joinable())
            m_discoveryThread->join();
        delete m_discoveryThread;
        m_discoveryThread = nullptr;
    }
    while (m_clRefreshThreads.load() != 0)
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    if (m_timerThread.joinable())
        m_timerThread.join();
}

void DeviceManager::DestroyAllDevices()
{
    // A lost camera's watchdog may still be handing itself over; it holds this mutex until done.
    std::lock_guard<std::mutex> online(onlineMutex);
    {
        std::lock_guard<std::mutex> lock(m_retiredMutex);
        for (Camera* camera : m_retiredCameras)
            delete camera;
        m_retiredCameras.clear();
    }
    // Cards only reference their card cameras, which the camera lists own.
    ClearMap(m_adapterList, m_adapterListMutex);
    ClearMap(m_secondAdapterMap, m_secondAdapterMapMutex);
    ClearMap(m_cardList, m_cardListMutex);
    ClearMap(m_spareCardMap, m_cardListMutex);
    ClearMap(m_furtherCardMap, m_cardListMutex);
    {
        std::lock_guard<std::mutex> lock(m_openedCardsMutex);
        m_openedCards.clear();
    }
    {
        std::lock_guard<std::mutex> lock(m_openedCamerasMutex);
        m_openedCameras.clear();
    }
    ClearMap(m_deviceList, m_deviceListMutex);
    {
        std::lock_guard<std::mutex> opened(m_openedCLCamerasMutex);
        m_openedCLCameras.clear();
    }
    {
        std::lock_guard<std::mutex> opened(m_openedOtherCamerasMutex);
        m_openedOtherCameras.clear();
    }
    ClearMap(m_clCameraList, m_clCameraListMutex);
    ClearMap(m_otherCameraList, m_otherCameraListMutex);
}

DeviceManager::CallScope::CallScope(DeviceManager& manager) : m_manager(manager)
{
    m_manager.m_activeCalls.fetch_add(1);
}

DeviceManager::CallScope::~CallScope()
{
    m_manager.m_activeCalls.fetch_sub(1);
}

void DeviceManager::RetireCamera(Camera* camera)
{
    if (camera == nullptr)
        return;
    std::lock_guard<std::mutex> lock(m_retiredMutex);
    m_retiredCameras.push_back(camera);
}

void DeviceManager::DestroyRetiredCameras()
{
    std::vector<Camera*> doomed;
    {
        std::lock_guard<std::mutex> lock(m_retiredMutex);
        doomed.swap(m_retiredCameras);
    }
    // Taken out of the list before the test: a call that started later cannot reach them.
    if (m_activeCalls.load() != 0) {
        std::lock_guard<std::mutex> lock(m_retiredMutex);
        m_retiredCameras.insert(m_retiredCameras.end(), doomed.begin(), doomed.end());
        return;
    }
    for (Camera* camera : doomed)
        delete camera;
}

void DeviceManager::NotifyFocusUpdate(std::string id, ViewerBiz3::FOCUS_TYPE type)
{
    if (!m_notificationsEnabled.load())
        return;
    m_event.NotifyFocusUpdateListener(type, id);
}

std::size_t DeviceManager::NotifyImageUpdate(std::string key, ZYLGENICAM::IImage* image, int extra1, int extra2)
{
    if (!m_notificationsEnabled.load())
        return 0;
    return m_event.NotifyImageUpdateListener(std::move(key), image, extra1, extra2);
}

void DeviceManager::NotifyAcqStatisticUpdate(std::string key, bool flag)
{
    if (!m_notificationsEnabled.load())
        return;
    m_event.NotifyAcqStatisticUpdateListener(std::move(key), flag);
}

void DeviceManager::NotifyDeviceListUpdate(std::string listKey, std::string key)
{
    if (!m_notificationsEnabled.load())
        return;
    m_event.NotifyDeviceListUpdateListener(1, {listKey}, {key});
}

void DeviceManager::NotifyDeviceListUpdate()
{
    if (!m_notificationsEnabled.load())
        return;
    std::vector<std::string> cardKeys;
    AppendKeys(m_adapterList, m_adapterListMutex, cardKeys);
    AppendKeys(m_cardList, m_cardListMutex, cardKeys);
    AppendKeys(m_secondAdapterMap, m_secondAdapterMapMutex, cardKeys);
    std::vector<std::string> cameraKeys;
    AppendKeys(m_deviceList, m_deviceListMutex, cameraKeys);
    AppendKeys(m_clCameraList, m_clCameraListMutex, cameraKeys);
    AppendKeys(m_otherCameraList, m_otherCameraListMutex, cameraKeys);
    m_event.NotifyDeviceListUpdateListener(0, cardKeys, cameraKeys);
}
