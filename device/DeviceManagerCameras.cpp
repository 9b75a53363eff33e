// Camera operations of the device manager: open and close with their
// bookkeeping, acquisition, information, node access, focus and modes.
#include <algorithm>
#include <cstdlib>

#include "camera/Camera.h"
#include "camera/LPCamera.h"
#include "camera/SLCamera.h"
#include "device/Card.h"
#include "device/DeviceManager.h"
#include "device/DeviceMaps.h"
#include "device/ProfileCameraSettings.h"
#include "events/EventManager.h"
#include "log/Log.h"

namespace {

// The decimal frame count of "AcquisitionFrameCount"; a value that is no number (a device may
// describe the node as a string or enumeration) means no limit rather than a limit of 0.
unsigned long long ParseFrameCount(const std::string& source, const std::string& count)
{
    const char* begin = count.c_str();
    char* end = nullptr;
    unsigned long long frames = std::strtoull(begin, &end, 10);
    if (end != begin && *end == '\0' && count.find('-') == std::string::npos)
        return frames;
    Utilities::LogWarning(source,
                          "AcquisitionFrameCount \"" + count + "\" is no number: grabbing without a frame limit.", 1);
    return ZYLGENICAM::NO_FRAME_LIMIT;
}

} // namespace

int DeviceManager::OpenCamera(std::string id)
{
    DeviceRegistry::CallScope scope(m_registry);
    std::lock_guard<std::mutex> operation(m_registry.operationMutex);
    Camera* camera = m_registry.FindDeviceListCamera(id);
    if (camera == nullptr)
        return -1;
    if (m_registry.HasAddressConflict(camera)) {
        Utilities::LogError(camera->GetName(),
                            "Ip conflict.Please check if there are devices with the same IP address.", 1);
        return -10;
    }
    int result = camera->OpenCamera(1);
    if (result != 0)
        return result;
    {
        std::lock_guard<std::mutex> opened(m_registry.openedCamerasMutex);
        m_registry.openedCameras.emplace(camera->GetKey(), camera);
    }
    LoadProfileCameraSettings(camera);
    NotifyDeviceListUpdate(camera->GetListKey(), camera->GetKey());
    return 0;
}

int DeviceManager::CloseCamera(std::string id)
{
    DeviceRegistry::CallScope scope(m_registry);
    std::unique_lock<std::mutex> operation(m_registry.operationMutex);
    Camera* camera = m_registry.FindOpenedCamera(id);
    if (camera == nullptr) {
        operation.unlock();
        return CloseCLCamera(id);
    }
    int result = camera->CloseCamera(true);
    if (result == 0) {
        {
            // By object rather than by key: a renamed USB camera sits under its new identifier.
            std::lock_guard<std::mutex> opened(m_registry.openedCamerasMutex);
            EraseObject(m_registry.openedCameras, camera);
        }
        SaveProfileCameraSettings(camera);
    }
    m_discovery.RequestRepeatPass();
    return result;
}

void DeviceManager::RemoveOpenedCamera(std::string id)
{
    std::lock_guard<std::mutex> operation(m_registry.operationMutex);
    m_registry.RemoveLostCamera(id);
}

std::vector<std::string> DeviceManager::GetOpenedCameraIds()
{
    return m_registry.GetOpenedCameraIds();
}

int DeviceManager::StartGrab(std::string id)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindOpenedCameraOrCL(id, true);
    if (camera == nullptr)
        return -1;
    unsigned long long frameCount = ZYLGENICAM::NO_FRAME_LIMIT;
    std::string mode;
    if (camera->GetNodeValue("AcquisitionMode", mode, true) == 0) {
        if (mode == "SingleFrame") {
            frameCount = 1;
        } else if (mode == "MultiFrame") {
            std::string count;
            if (camera->GetNodeValue("AcquisitionFrameCount", count, true) == 0)
                frameCount = ParseFrameCount(camera->GetName(), count);
        }
    }
    int result = camera->StartGrab(0, frameCount);
    if (result == 0)
        NotifyDeviceListUpdate(camera->GetListKey(), camera->GetKey());
    return result;
}

int DeviceManager::StopGrab(std::string id)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindOpenedCameraOrCL(id, true);
    return camera == nullptr ? -1 : camera->StopGrab(true);
}

bool DeviceManager::IsGrabbing(std::string id)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindOpenedCameraOrCL(id, true);
    return camera != nullptr && camera->IsGrabbing();
}

std::string DeviceManager::GetCameraInfo(std::string id, ViewerBiz3::CAM_INFO info)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindListedCamera(id);
    return camera == nullptr ? std::string() : camera->GetInfo(info);
}

int DeviceManager::SetCameraInfo(std::string id, ViewerBiz3::CAM_INFO info, const std::string& value)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindListedCamera(id);
    return camera == nullptr ? -1 : camera->SetInfo(info, value);
}

int DeviceManager::GetCameraNodeValue(std::string id, std::string node, std::string& value)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindOpenedCameraOrCL(id, false);
    return camera == nullptr ? -1 : camera->GetNodeValue(node, value, true);
}

int DeviceManager::SetCameraNodeValue(std::string id, std::string node, std::string value)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindOpenedCameraOrCL(id, false);
    return camera == nullptr ? -1 : camera->SetNodeValue(node, value, true);
}

int DeviceManager::GetCameraIntNodeInfo(std::string id, std::string node, std::string& value, std::string& min,
                                        std::string& max, std::string& inc)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindOpenedCamera(id);
    return camera == nullptr ? -1 : camera->GetIntNodeInfo(node, value, min, max, inc, true);
}

const char* DeviceManager::GetXML(ViewerBiz3::FOCUS_TYPE type, std::string id)
{
    DeviceRegistry::CallScope scope(m_registry);
    if (type == ViewerBiz3::FOCUS_CARD) {
        Card* card = m_registry.FindOpenedCard(id);
        return card == nullptr ? nullptr : card->GetXML();
    }
    Camera* camera = m_registry.FindOpenedCameraOrCL(id, false);
    if (camera == nullptr)
        return nullptr;
    ZYLGENICAM::IModule* module = camera->GetXML(type);
    return module == nullptr ? nullptr : module->GetXML();
}

GenApi_3_4::INodeMap* DeviceManager::GetNodeMap(ViewerBiz3::FOCUS_TYPE type, std::string id,
                                                ViewerBiz3::NodeMapType which)
{
    DeviceRegistry::CallScope scope(m_registry);
    if (type == ViewerBiz3::FOCUS_CARD) {
        Card* card = m_registry.FindOpenedCard(id);
        return card == nullptr ? nullptr : card->GetNodeMap();
    }
    Camera* camera = m_registry.FindOpenedCameraOrCL(id, true);
    return camera == nullptr ? nullptr : camera->GetNodeMap(which);
}

void DeviceManager::SetFocusFlags(const std::string& id, bool focus)
{
    {
        // Adapters are rebuilt by every pass, so the flag is set while the list is held.
        std::lock_guard<std::mutex> lock(m_registry.adapterListMutex);
        if (Card* card = FindInMap<Card>(m_registry.adapterList, id))
            card->SetFlag2(focus ? 1 : 0);
    }
    if (Camera* camera = m_registry.FindDeviceListCamera(id))
        camera->SetFlag3(focus);
}

int DeviceManager::SetFocus(ViewerBiz3::FOCUS_TYPE type, std::string id)
{
    if (type < 0 || type >= 4)
        return -1;
    DeviceRegistry::CallScope scope(m_registry);
    std::string previousId;
    {
        std::lock_guard<std::mutex> lock(m_focusMutex);
        previousId = m_focusId;
    }
    // Both calls act on the new holder (the identifier passed in is ignored), so
    // its flags end false and the previous holder's stay as they were.
    auto setFocusFlag = [this, &id](const std::string& /*holder*/, bool focus) { SetFocusFlags(id, focus); };
    setFocusFlag(id, true);
    setFocusFlag(previousId, false);
    {
        std::lock_guard<std::mutex> lock(m_focusMutex);
        m_focusId = id;
    }
    NotifyFocusUpdate(id, type);
    return 0;
}

int DeviceManager::ModifyCameraId(std::string oldId, std::string newId)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindOpenedCamera(oldId);
    if (camera == nullptr)
        return -1;
    int result = camera->SetNodeValue("DeviceUserID", newId, true);
    if (result != 0)
        return result;
    // The map keys stay: the camera is found by its old key or by its new name.
    std::string newName = newId + "(" + camera->GetInfo(ViewerBiz3::CAM_SERIAL) + ")";
    camera->SetName(newName);
    m_event.NotifyCameraIdUpdateListener(oldId, newName);
    return 0;
}

int DeviceManager::SetSLCameraShowMode(std::string id, int mode)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindDeviceListCamera(id);
    if (camera == nullptr)
        return -1;
    if (camera->IsKind(CameraKind::ShowMode)) {
        if (auto* showModeCamera = dynamic_cast<SLCamera*>(camera))
            showModeCamera->SetCameraShowMode(mode);
        m_event.NotifySLImageShowModeUpdateListener(id, mode);
    }
    // Found cameras answer -2 even after a successful change: hosts rely on it.
    return -2;
}

int DeviceManager::GetSLCameraShowMode(std::string id)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindDeviceListCamera(id);
    if (camera == nullptr)
        return -1;
    auto* showModeCamera = dynamic_cast<SLCamera*>(camera);
    if (!camera->IsKind(CameraKind::ShowMode) || showModeCamera == nullptr)
        return -2;
    return showModeCamera->GetCameraShowMode();
}

int DeviceManager::FirmwareUpgrade(const std::string& id, const std::string& file, int* progress, bool* done)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindOpenedCamera(id);
    return camera == nullptr ? -1 : camera->FirmwareUpgrade(file, progress, done);
}

int DeviceManager::SetCameraImageMode(std::string id, int mode, bool notify)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindOpenedCamera(id);
    if (camera == nullptr)
        return -1;
    auto* profileCamera = dynamic_cast<LPCamera*>(camera);
    if (!camera->IsKind(CameraKind::Profile) || profileCamera == nullptr)
        return -2;
    std::string key = camera->GetKey();
    if (mode == 3) {
        m_event.NotifyImageModeUpdateListener(key, 3);
        return 0;
    }
    int result = profileCamera->SetCameraImageMode(mode);
    if (result != 0)
        Utilities::LogError(key, "Set camera image mode " + std::to_string(mode) + " failed!", 1);
    else if (notify)
        m_event.NotifyImageModeUpdateListener(key, mode);
    return result;
}

int DeviceManager::GetCameraImageMode(std::string id)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindOpenedCamera(id);
    if (camera == nullptr)
        return -1;
    auto* profileCamera = dynamic_cast<LPCamera*>(camera);
    if (!camera->IsKind(CameraKind::Profile) || profileCamera == nullptr)
        return -2;
    return profileCamera->GetCameraImageMode();
}

int DeviceManager::ModifyCameraIP(std::string id, const std::string& ip, const std::string& mask,
                                  const std::string& gateway, bool persistent)
{
    DeviceRegistry::CallScope scope(m_registry);
    Camera* camera = m_registry.FindDeviceListCamera(id);
    return camera == nullptr ? -1 : camera->ModifyCameraIP(ip, mask, gateway, persistent);
}
