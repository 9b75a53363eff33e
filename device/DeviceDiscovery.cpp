#include "device/DeviceDiscovery.h"

#include <chrono>
#include <memory>
#include <unordered_map>
#include <utility>

#include "camera/CLCamera.h"
#include "camera/Camera.h"
#include "camera/LPCamera.h"
#include "camera/SLCamera.h"
#include "device/Card.h"
#include "device/DeviceIdentity.h"
#include "device/DeviceManager.h"
#include "device/DeviceMaps.h"
#include "device/SdkRecords.h"
#include "events/EventManager.h"

namespace {

constexpr int TIMER_PERIOD_TICKS = 30;
const char* const USB_CARD_KEY = "usbCard";

// Simulated cameras come in several kinds; their transport and serial number tell them apart.
bool IsSimulatedCamera(Camera* camera, const std::string& serial)
{
    ZYLGENICAM::ICamera* handle = camera->GetSdkCamera();
    ZYLGENICAM::ICameraInfo* info = handle != nullptr ? handle->GetDeviceInfo() : nullptr;
    return info != nullptr && info->GetTLType() == ZYLGENICAM::TL_SIMULATED &&
           camera->GetInfo(ViewerBiz3::CAM_SERIAL) == serial;
}

} // namespace

DeviceDiscovery::DeviceDiscovery(DeviceRegistry& registry, CameraHost& host) : m_registry(registry), m_host(host) {}

DeviceDiscovery::~DeviceDiscovery()
{
    Stop();
}

void DeviceDiscovery::StartTimer()
{
    m_timerThread = std::thread([this] { RunTimer(); });
}

void DeviceDiscovery::Stop()
{
    std::thread discovery;
    {
        // Under the refresh mutex, so the wake-up cannot fall between the waiter's test and its sleep,
        // and no request starts the thread anew.
        std::lock_guard<std::mutex> lock(m_refreshMutex);
        m_idle.store(false);
        m_stop.store(true);
        discovery = std::move(m_discoveryThread);
    }
    m_refreshCondition.notify_one();
    {
        std::lock_guard<std::mutex> lock(m_timerMutex);
    }
    m_timerWake.notify_all();
    if (m_timerThread.joinable())
        m_timerThread.join();
    if (discovery.joinable())
        discovery.join();
}

void DeviceDiscovery::RequestPass()
{
    std::lock_guard<std::mutex> lock(m_refreshMutex);
    if (m_stop.load())
        return;
    if (m_discoveryThread.joinable()) {
        m_idle.store(false);
        m_refreshCondition.notify_one();
    } else {
        m_discoveryThread = std::thread([this] { RunPasses(); });
    }
}

void DeviceDiscovery::RequestRepeatPass()
{
    m_repeatPass.store(true);
    m_timerTicks.store(0);
}

void DeviceDiscovery::RunTimer()
{
    while (!m_stop.load()) {
        {
            // Shutdown wakes the wait, so it never waits out a whole tick.
            std::unique_lock<std::mutex> lock(m_timerMutex);
            m_timerWake.wait_for(lock, std::chrono::seconds(1), [this] { return m_stop.load(); });
        }
        int ticks = m_timerTicks.fetch_add(1) + 1;
        if (m_stop.load())
            return;
        if (ticks % TIMER_PERIOD_TICKS == 0) {
            // Under the refresh mutex so the wake-up cannot fall between the waiter's test and its sleep.
            std::lock_guard<std::mutex> lock(m_refreshMutex);
            m_idle.store(false);
            m_refreshCondition.notify_one();
        }
    }
}

void DeviceDiscovery::RunPasses()
{
    do {
        uint64_t mask = m_tlTypeMask.load() & ~static_cast<unsigned long long>(CameraLinkBits);
        {
            // The records are let go before anyone hears of the pass.
            SdkRecords records(ZYLGENICAM::DiscoveryByTLType(mask));
            if (m_stop.load())
                return;
            std::lock_guard<std::mutex> operation(m_registry.operationMutex);
            std::lock_guard<std::mutex> adapters(m_registry.adapterListMutex);
            std::lock_guard<std::mutex> devices(m_registry.deviceListMutex);
            std::lock_guard<std::mutex> opened(m_registry.openedCamerasMutex);
            RebuildDeviceList(records.List());
        }
        SendPendingIdUpdates();
        {
            std::lock_guard<std::mutex> online(onlineMutex);
            m_host.NotifyDeviceListUpdate();
            // Lost cameras hand themselves over under this mutex, so none is still on its way out.
            m_registry.DestroyRetiredCameras();
        }
        if (m_repeatPass.exchange(false))
            continue;
        std::unique_lock<std::mutex> lock(m_refreshMutex);
        m_refreshCondition.wait(lock, [this] { return !m_idle.load(); });
        m_idle.store(true);
    } while (!m_stop.load());
}

void DeviceDiscovery::RebuildDeviceList(const std::list<ZYLGENICAM::ICameraInfo*>& records)
{
    for (auto& entry : m_registry.adapterList)
        delete entry.second;
    m_registry.adapterList.clear();
    DropUnopenedCameras();
    RebuildAdapterList();
    AttachOpenedCameras();
    m_registry.deviceList = m_registry.openedCameras;
    std::unordered_map<std::string, std::unique_ptr<Camera>> passCameras;
    for (ZYLGENICAM::ICameraInfo* record : records) {
        if (record == nullptr)
            continue;
        std::string identifier = CameraIdentifier(record);
        // The first device with an identifier wins; the object made for a later one is dropped.
        if (!CameraIsOpened(record))
            passCameras.emplace(identifier, CreateListedCamera(record, identifier));
    }
    for (auto& entry : passCameras) {
        if (m_registry.deviceList.emplace(entry.first, entry.second.get()).second)
            entry.second.release();
    }
    DropUnusedAdapters();
}

void DeviceDiscovery::DropUnopenedCameras()
{
    for (auto& entry : m_registry.deviceList) {
        Camera* camera = entry.second;
        bool opened = false;
        for (auto& openedEntry : m_registry.openedCameras)
            opened = opened || openedEntry.second == camera;
        // A host call may still hold it, so it is destroyed once no call runs.
        if (!opened)
            m_registry.RetireCamera(camera);
    }
    m_registry.deviceList.clear();
}

void DeviceDiscovery::RebuildAdapterList()
{
    m_registry.adapterList = DeviceManager::GetNetworkCards();
    auto usbCard = std::make_unique<Card>();
    usbCard->SetKey(USB_CARD_KEY);
    usbCard->SetType(Card::USB_ADAPTER);
    usbCard->SetFlag2(0);
    usbCard->SetOpened(false);
    usbCard->SetInUseCount(0);
    if (m_registry.adapterList.emplace(USB_CARD_KEY, usbCard.get()).second)
        usbCard.release();
}

void DeviceDiscovery::AttachOpenedCameras()
{
    for (auto& entry : m_registry.openedCameras) {
        Camera* camera = entry.second;
        if (camera == nullptr)
            continue;
        bool usb = camera->IsKind(CameraKind::Usb);
        std::string hostInterface = camera->GetHostInterfaceAddress();
        for (auto& adapter : m_registry.adapterList) {
            Card* card = adapter.second;
            bool matches =
                usb ? card->GetType() == Card::USB_ADAPTER
                    : card->GetType() == Card::NETWORK_ADAPTER && card->GetText(ViewerBiz3::CARD_IP) == hostInterface;
            if (matches) {
                camera->SetListKey(adapter.first);
                card->AddInUse();
                break;
            }
        }
    }
}

std::unique_ptr<Camera> DeviceDiscovery::CreateListedCamera(ZYLGENICAM::ICameraInfo* info,
                                                            const std::string& identifier)
{
    ZYLGENICAM::ICamera* handle = ZYLGENICAM::CreateCamera(info);
    std::string model = SdkText(info->GetModelName());
    std::string serial = SdkText(info->GetSerialNumber());
    std::unique_ptr<Camera> camera;
    CameraKind kind;
    if (!serial.empty() && serial[0] == 'F') {
        camera = std::make_unique<LPCamera>(handle);
        kind = CameraKind::Profile;
    } else if (model.find("QV-RM") != std::string::npos) {
        camera = std::make_unique<SLCamera>(handle);
        kind = CameraKind::ShowMode;
    } else {
        camera = std::make_unique<Camera>(handle);
        kind = CameraKind::Area;
    }
    camera->SetKind(kind);
    camera->SetGrabbing(handle != nullptr && handle->IsGrabbing());
    camera->SetName(identifier);
    camera->SetKey(identifier);
    camera->SetOnline(handle != nullptr && handle->IsConnected());
    camera->SetOpened(handle != nullptr && handle->IsOpen());
    camera->SetFlag3(false);
    FillRecordTexts(*camera, info);
    ZYLGENICAM::ICameraInfo* deviceInfo = handle == nullptr ? nullptr : handle->GetDeviceInfo();
    if (deviceInfo != nullptr)
        AttachToAdapter(camera.get(), info, deviceInfo->GetTLType());
    return camera;
}

void DeviceDiscovery::AttachToAdapter(Camera* camera, ZYLGENICAM::ICameraInfo* info, int tlType)
{
    if (tlType == ZYLGENICAM::TL_GIGE) {
        std::string ip = SdkText(info->GetGigEInfo(ZYLGENICAM::GIGE_IP));
        std::string mask = SdkText(info->GetGigEInfo(ZYLGENICAM::GIGE_MASK));
        std::string hostInterface = SdkText(info->GetGigEInfo(ZYLGENICAM::GIGE_HOST_INTERFACE_IP));
        camera->SetText(ViewerBiz3::CAM_IP, ip);
        camera->SetText(ViewerBiz3::CAM_MAC, SdkText(info->GetGigEInfo(ZYLGENICAM::GIGE_MAC)));
        camera->SetText(ViewerBiz3::CAM_MASK, mask);
        camera->SetText(ViewerBiz3::CAM_GATEWAY, SdkText(info->GetGigEInfo(ZYLGENICAM::GIGE_GATEWAY)));
        camera->SetHostInterfaceAddress(hostInterface);
        for (auto& adapter : m_registry.adapterList) {
            Card* card = adapter.second;
            std::string adapterIp = card->GetText(ViewerBiz3::CARD_IP);
            if (adapterIp != hostInterface)
                continue;
            card->AddInUse();
            camera->SetListKey(adapter.first);
            bool sameSegment =
                DeviceManager::IsNetworkSameSegment(ip, mask, adapterIp, card->GetText(ViewerBiz3::CARD_MASK));
            camera->SetSameSegment(sameSegment);
            if (!sameSegment)
                camera->SetAvailable(false);
            break;
        }
    } else if (tlType == ZYLGENICAM::TL_USB) {
        camera->SetKind(CameraKind::Usb);
        camera->SetListKey(USB_CARD_KEY);
        auto usbCard = m_registry.adapterList.find(USB_CARD_KEY);
        if (usbCard != m_registry.adapterList.end())
            usbCard->second->AddInUse();
        camera->SetSameSegment(true);
    }
}

void DeviceDiscovery::DropUnusedAdapters()
{
    for (auto entry = m_registry.adapterList.begin(); entry != m_registry.adapterList.end();) {
        if (entry->second->GetInUseCount() == 0) {
            delete entry->second;
            entry = m_registry.adapterList.erase(entry);
        } else {
            ++entry;
        }
    }
}

bool DeviceDiscovery::CameraIsOpened(ZYLGENICAM::ICameraInfo* info)
{
    // Called by the pass, which holds the operation and opened-cameras mutexes.
    if (info == nullptr)
        return false;
    int tlType = info->GetTLType();
    std::string serial = SdkText(info->GetSerialNumber());
    DeviceRegistry::CameraMap& opened = m_registry.openedCameras;
    auto match = opened.end();
    if (tlType == ZYLGENICAM::TL_GIGE) {
        std::string mac = SdkText(info->GetGigEInfo(ZYLGENICAM::GIGE_MAC));
        for (auto entry = opened.begin(); entry != opened.end() && match == opened.end(); ++entry) {
            Camera* camera = entry->second;
            if (camera != nullptr && camera->GetKind() < static_cast<uint16_t>(firstNonGigeKind) &&
                camera->GetInfo(ViewerBiz3::CAM_MAC) == mac)
                match = entry;
        }
    } else if (tlType == ZYLGENICAM::TL_USB) {
        for (auto entry = opened.begin(); entry != opened.end() && match == opened.end(); ++entry) {
            Camera* camera = entry->second;
            if (camera != nullptr && camera->IsKind(CameraKind::Usb) &&
                camera->GetInfo(ViewerBiz3::CAM_SERIAL) == serial)
                match = entry;
        }
    } else if (tlType == ZYLGENICAM::TL_SIMULATED) {
        for (auto entry = opened.begin(); entry != opened.end() && match == opened.end(); ++entry) {
            if (entry->second != nullptr && IsSimulatedCamera(entry->second, serial))
                match = entry;
        }
    } else if (tlType == ZYLGENICAM::TL_CAMERALINK) {
        std::lock_guard<std::mutex> openedCL(m_registry.openedCLCamerasMutex);
        for (auto& entry : m_registry.openedCLCameras) {
            if (entry.second != nullptr && entry.second->GetInfo(ViewerBiz3::CAM_SERIAL) == serial)
                return true;
        }
        return false;
    }
    if (match == opened.end())
        return false;
    Camera* camera = match->second;
    std::string identifier = CameraIdentifier(info);
    if (identifier == camera->GetName())
        return true;
    m_pendingIdUpdates.emplace_back(camera->GetKey(), identifier);
    camera->SetName(identifier);
    if (tlType == ZYLGENICAM::TL_USB) {
        opened.erase(match);
        opened.emplace(identifier, camera);
    }
    return true;
}

void DeviceDiscovery::SendPendingIdUpdates()
{
    std::vector<std::pair<std::string, std::string>> updates;
    {
        std::lock_guard<std::mutex> operation(m_registry.operationMutex);
        updates.swap(m_pendingIdUpdates);
    }
    for (auto& update : updates)
        m_event.NotifyCameraIdUpdateListener(update.first, update.second);
}
