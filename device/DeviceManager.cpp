// The singleton's life (with the SDK's), the shutdown sequence, the refresh
// requests and the notifications.
#include "device/DeviceManager.h"

#include <memory>
#include <utility>

#include "events/EventManager.h"
#include "log/Log.h"

namespace {

// The one manager of the process; Release empties it and the next use creates it again.
struct ManagerSlot {
    // A manager a host never released is left to the process's end: its threads
    // may still run while the static objects they use are destroyed.
    ~ManagerSlot() { static_cast<void>(manager.release()); }

    std::mutex mutex;
    std::unique_ptr<DeviceManager> manager;
};

ManagerSlot& TheManagerSlot()
{
    static ManagerSlot slot;
    return slot;
}

} // namespace

DeviceManager* DeviceManager::Start()
{
    ZYLGENICAM::Init();
    return getInstance();
}

void DeviceManager::Shutdown()
{
    getInstance()->Release();
    ZYLGENICAM::UnInit();
}

DeviceManager* DeviceManager::getInstance()
{
    ManagerSlot& slot = TheManagerSlot();
    std::lock_guard<std::mutex> lock(slot.mutex);
    if (!slot.manager)
        slot.manager.reset(new DeviceManager());
    return slot.manager.get();
}

void DeviceManager::Release()
{
    ManagerSlot& slot = TheManagerSlot();
    // Destroyed outside the slot's lock, at the end of this call.
    std::unique_ptr<DeviceManager> released;
    {
        std::lock_guard<std::mutex> lock(slot.mutex);
        if (slot.manager.get() == this)
            released = std::move(slot.manager);
    }
}

DeviceManager::DeviceManager() : m_discovery(m_registry, *this), m_cameraLink(m_registry, *this)
{
    Utilities::SetUpLogging();
    m_discovery.StartTimer();
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
    m_registry.DestroyAll();
}

void DeviceManager::StopBackgroundThreads()
{
    m_discovery.Stop();
    m_cameraLink.Stop();
}

int DeviceManager::RefreshDeviceList(int types)
{
    if ((types & DeviceDiscovery::CameraLinkBits) != 0)
        m_cameraLink.StartRefresh((types & ZYLGENICAM::TL_CAMERALINK) != 0);
    if ((types & ~DeviceDiscovery::CameraLinkBits) != 0)
        m_discovery.RequestPass();
    return 0;
}

void DeviceManager::SetTLTypeList(unsigned long long mask)
{
    m_discovery.SetTLTypeMask(mask);
    m_event.NotifyTLTypeUpdateListener(mask);
}

unsigned long long DeviceManager::GetTLTypeList()
{
    return m_discovery.GetTLTypeMask();
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
    std::vector<std::string> cameraKeys;
    m_registry.ListedKeys(cardKeys, cameraKeys);
    m_event.NotifyDeviceListUpdateListener(0, cardKeys, cameraKeys);
}

int DeviceManager::OpenCard(std::string key)
{
    return m_cameraLink.OpenCard(key);
}

int DeviceManager::CloseCard(std::string key)
{
    return m_cameraLink.CloseCard(key);
}

std::vector<std::string> DeviceManager::GetOpenedCardIds()
{
    return m_registry.GetOpenedCardIds();
}

std::string DeviceManager::GetCardInfo(std::string key, ViewerBiz3::CARD_INFO info)
{
    return m_registry.GetCardInfo(key, info);
}

int DeviceManager::GetCardNodeValue(std::string key, std::string node, std::string& value)
{
    return m_cameraLink.GetCardNodeValue(key, node, value);
}

int DeviceManager::SetCardNodeValue(std::string key, std::string node, std::string value)
{
    return m_cameraLink.SetCardNodeValue(key, node, value);
}

int DeviceManager::OpenCLCamera(std::string key, std::string protocol, std::string serialPort)
{
    DeviceRegistry::CallScope scope(m_registry);
    std::lock_guard<std::mutex> operation(m_registry.operationMutex);
    return m_cameraLink.OpenCamera(key, protocol, serialPort);
}

int DeviceManager::CloseCLCamera(std::string key)
{
    DeviceRegistry::CallScope scope(m_registry);
    std::lock_guard<std::mutex> operation(m_registry.operationMutex);
    return m_cameraLink.CloseCamera(key);
}

void DeviceManager::AddCLCamera(Camera* camera)
{
    m_cameraLink.AddCamera(camera);
}

int DeviceManager::GetCLProtocolsAndSerials(std::list<std::string>& protocols, std::list<std::string>& serials)
{
    protocols = ZYLGENICAM::GetCLProtocols();
    serials = ZYLGENICAM::GetCLSerials();
    return 0;
}
