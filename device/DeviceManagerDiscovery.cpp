// The device-list refresh: refresh requests, the timer thread, the discovery
// pass and the recognition of devices that are already open.
#include <chrono>

#include "camera/CLCamera.h"
#include "camera/Camera.h"
#include "camera/LPCamera.h"
#include "camera/SLCamera.h"
#include "device/Card.h"
#include "device/DeviceIdentity.h"
#include "device/DeviceManager.h"
#include "device/DeviceMaps.h"
#include "events/EventManager.h"

namespace {

constexpr int CAMERA_LINK_BITS = ZYLGENICAM::TL_CAMERALINK | 0x8000;
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

int DeviceManager::RefreshDeviceList(int types)
{
    std::lock_guard<std::mutex> lock(m_refreshMutex);
    if ((types & CAMERA_LINK_BITS) != 0) {
        bool cardsAndCameras = (types & ZYLGENICAM::TL_CAMERALINK) != 0;
        m_clRefreshThreads.fetch_add(1);
        std::thread([this, cardsAndCameras] { RunCameraLinkRefresh(cardsAndCameras); }).detach();
    }
    types &= ~CAMERA_LINK_BITS;
    if (types != 0) {
        if (m_discoveryThread != nullptr) {
            m_idle.store(false);
            m_refreshCondition->notify_one();
        } else {
            StartDiscoveryThread();
        }
    }
    return 0;
}

void DeviceManager::StartDiscoveryThread()
{
    m_discoveryThread = new std::thread([this] {
        m_discoveryEnded.store(false);
        DiscoveryDeviceList();
        // Last access to this object: the destructor frees it once it sees the flag.
        m_discoveryEnded.store(true);
    });
    m_discoveryThread->detach();
}

void DeviceManager::SetTLTypeList(unsigned long long mask)
{
    m_tlTypeMask.store(mask);
    m_event.NotifyTLTypeUpdateListener(mask);
}

unsigned long long DeviceManager::GetTLTypeList()
{
    return m_tlTypeMask.load();
}

void DeviceManager::TimerUpdateDeviceListFunction()
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
            m_refreshCondition->notify_one();
        }
    }
}

void DeviceManager::DiscoveryDeviceList()
{
    do {
        uint64_t mask = m_tlTypeMask.load() & ~static_cast<unsigned long long>(CAMERA_LINK_BITS);
        std::list<ZYLGENICAM::ICameraInfo*> records = ZYLGENICAM::DiscoveryByTLType(mask);
        if (m_stop.load()) {
            for (ZYLGENICAM::ICameraInfo* record : records)
                if (record != nullptr)
                    record->Destroy();
            return;
        }
        {
            std::lock_guard<std::mutex> operation(m_operationMutex);
            std::lock_guard<std::mutex> adapters(m_adapterListMutex);
            std::lock_guard<std::mutex> devices(m_deviceListMutex);
            std::lock_guard<std::mutex> opened(m_openedCamerasMutex);
            RebuildDeviceList(records);
        }
        SendPendingIdUpdates();
        {
            std::lock_guard<std::mutex> online(onlineMutex);
            NotifyDeviceListUpdate();
            // Lost cameras hand themselves over under this mutex, so none is still on its way out.
            DestroyRetiredCameras();
        }
        if (m_repeatPass.exchange(false))
            continue;
        std::unique_lock<std::mutex> lock(m_refreshMutex);
        m_refreshCondition->wait(lock, [this] { return !m_idle.load(); });
        m_idle.store(true);
    } while (!m_stop.load());
}

void DeviceManager::RebuildDeviceList(std::list<ZYLGENICAM::ICameraInfo*>& records)
{
    for (auto& entry : m_adapterList)
        delete entry.second;
    m_adapterList.clear();
    DropUnopenedCameras();
    RebuildAdapterList();
    AttachOpenedCameras();
    m_deviceList = m_openedCameras;
    CameraMap passCameras;
    for (ZYLGENICAM::ICameraInfo* record : records) {
        if (record == nullptr)
            continue;
        std::string identifier = CameraIdentifier(record);
        if (!CameraIsOpened(record)) {
            Camera* camera = CreateListedCamera(record, identifier);
            // The first device with an identifier wins; the object made for a later one is dropped.
            if (!passCameras.emplace(identifier, camera).second)
                delete camera;
        }
        record->Destroy();
    }
    for (auto& entry : passCameras) {
        if (!m_deviceList.emplace(entry.first, entry.second).second)
            delete entry.second;
    }
    DropUnusedAdapters();
}

void DeviceManager::DropUnopenedCameras()
{
    for (auto& entry : m_deviceList) {
        Camera* camera = entry.second;
        bool opened = false;
        for (auto& openedEntry : m_openedCameras)
            opened = opened || openedEntry.second == camera;
        // A host call may still hold it, so it is destroyed once no call runs.
        if (!opened)
            RetireCamera(camera);
    }
    m_deviceList.clear();
}

void DeviceManager::RebuildAdapterList()
{
    m_adapterList = GetNetworkCards();
    auto* usbCard = new Card();
    usbCard->SetKey(USB_CARD_KEY);
    usbCard->SetType(Card::USB_ADAPTER);
    usbCard->SetFlag2(0);
    usbCard->SetOpened(false);
    usbCard->SetInUseCount(0);
    if (!m_adapterList.emplace(USB_CARD_KEY, usbCard).second)
        delete usbCard;
}

void DeviceManager::AttachOpenedCameras()
{
    for (auto& entry : m_openedCameras) {
        Camera* camera = entry.second;
        if (camera == nullptr)
            continue;
        bool usb = camera->IsKind(CameraKind::Usb);
        std::string hostInterface = camera->GetHostInterfaceAddress();
        for (auto& adapter : m_adapterList) {
            Card* card = adapter.second;
            bool matches = usb ? card->GetType() == Card::USB_ADAPTER
                               : card->GetType() == Card::NETWORK_ADAPTER &&
                                     card->GetText(ViewerBiz3::CARD_IP) == hostInterface;
            if (matches) {
                camera->SetListKey(adapter.first);
                card->AddInUse();
                break;
            }
        }
    }
}

Camera* DeviceManager::CreateListedCamera(ZYLGENICAM::ICameraInfo* info, const std::string& identifier)
{
    ZYLGENICAM::ICamera* handle = ZYLGENICAM::CreateCamera(info);
    std::string model = SdkText(info->GetModelName());
    std::string serial = SdkText(info->GetSerialNumber());
    Camera* camera;
    CameraKind kind;
    if (!serial.empty() && serial[0] == 'F') {
        camera = new LPCamera(handle);
        kind = CameraKind::Profile;
    } else if (model.find("QV-RM") != std::string::npos) {
        camera = new SLCamera(handle);
        kind = CameraKind::ShowMode;
    } else {
        camera = new Camera(handle);
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
        AttachToAdapter(camera, info, deviceInfo->GetTLType());
    return camera;
}

void DeviceManager::AttachToAdapter(Camera* camera, ZYLGENICAM::ICameraInfo* info, int tlType)
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
        for (auto& adapter : m_adapterList) {
            Card* card = adapter.second;
            std::string adapterIp = card->GetText(ViewerBiz3::CARD_IP);
            if (adapterIp != hostInterface)
                continue;
            card->AddInUse();
            camera->SetListKey(adapter.first);
            bool sameSegment = IsNetworkSameSegment(ip, mask, adapterIp, card->GetText(ViewerBiz3::CARD_MASK));
            camera->SetSameSegment(sameSegment);
            if (!sameSegment)
                camera->SetAvailable(false);
            break;
        }
    } else if (tlType == ZYLGENICAM::TL_USB) {
        camera->SetKind(CameraKind::Usb);
        camera->SetListKey(USB_CARD_KEY);
        auto usbCard = m_adapterList.find(USB_CARD_KEY);
        if (usbCard != m_adapterList.end())
            usbCard->second->AddInUse();
        camera->SetSameSegment(true);
    }
}

void DeviceManager::DropUnusedAdapters()
{
    for (auto entry = m_adapterList.begin(); entry != m_adapterList.end();) {
        if (entry->second->GetInUseCount() == 0) {
            delete entry->second;
            entry = m_adapterList.erase(entry);
        } else {
            ++entry;
        }
    }
}

bool DeviceManager::CameraIsOpened(ZYLGENICAM::ICameraInfo* info)
{
    // Called by the pass, which holds the operation and opened-cameras mutexes.
    if (info == nullptr)
        return false;
    int tlType = info->GetTLType();
    std::string serial = SdkText(info->GetSerialNumber());
    auto match = m_openedCameras.end();
    if (tlType == ZYLGENICAM::TL_GIGE) {
        std::string mac = SdkText(info->GetGigEInfo(ZYLGENICAM::GIGE_MAC));
        for (auto entry = m_openedCameras.begin(); entry != m_openedCameras.end() && match == m_openedCameras.end();
             ++entry) {
            Camera* camera = entry->second;
            if (camera != nullptr && camera->GetKind() < static_cast<uint16_t>(firstNonGigeKind) &&
                camera->GetInfo(ViewerBiz3::CAM_MAC) == mac)
                match = entry;
        }
    } else if (tlType == ZYLGENICAM::TL_USB) {
        for (auto entry = m_openedCameras.begin(); entry != m_openedCameras.end() && match == m_openedCameras.end();
             ++entry) {
            Camera* camera = entry->second;
            if (camera != nullptr && camera->IsKind(CameraKind::Usb) && camera->GetInfo(ViewerBiz3::CAM_SERIAL) == serial)
                match = entry;
        }
    } else if (tlType == ZYLGENICAM::TL_SIMULATED) {
        for (auto entry = m_openedCameras.begin(); entry != m_openedCameras.end() && match == m_openedCameras.end();
             ++entry) {
            if (entry->second != nullptr && IsSimulatedCamera(entry->second, serial))
                match = entry;
        }
    } else if (tlType == ZYLGENICAM::TL_CAMERALINK) {
        std::lock_guard<std::mutex> openedCL(m_openedCLCamerasMutex);
        for (auto& entry : m_openedCLCameras) {
            if (entry.second != nullptr && entry.second->GetInfo(ViewerBiz3::CAM_SERIAL) == serial)
                return true;
        }
        return false;
    }
    if (match == m_openedCameras.end())
        return false;
    Camera* camera = match->second;
    std::string identifier = CameraIdentifier(info);
    if (identifier == camera->GetName())
        return true;
    m_pendingIdUpdates.emplace_back(camera->GetKey(), identifier);
    camera->SetName(identifier);
    if (tlType == ZYLGENICAM::TL_USB) {
        m_openedCameras.erase(match);
        m_openedCameras.emplace(identifier, camera);
    }
    return true;
}

void DeviceManager::SendPendingIdUpdates()
{
    std::vector<std::pair<std::string, std::string>> updates;
    {
        std::lock_guard<std::mutex> operation(m_operationMutex);
        updates.swap(m_pendingIdUpdates);
    }
    for (auto& update : updates)
        m_event.NotifyCameraIdUpdateListener(update.first, update.second);
}
