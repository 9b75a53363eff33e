// Camera operations of the device manager: open and close with their
// bookkeeping, acquisition, information, node access, focus and modes.
#include <algorithm>
#include <cstdlib>

#include "camera/CLCamera.h"
#include "camera/Camera.h"
#include "camera/LPCamera.h"
#include "camera/SLCamera.h"
#include "device/Card.h"
#include "device/DeviceManager.h"
#include "device/DeviceMaps.h"
#include "events/EventManager.h"
#include "log/Log.h"
#include "settings/ParameterManager.h"

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
    Utilities::LogWarning(source, "AcquisitionFrameCount \"" + count + "\" is no number: grabbing without a frame limit.",
                          1);
    return ZYLGENICAM::NO_FRAME_LIMIT;
}

} // namespace

Camera* DeviceManager::FindDeviceListCamera(const std::string& id)
{
    return GetPointerFromMap<Camera>(m_deviceList, m_deviceListMutex, id);
}

Camera* DeviceManager::FindOpenedCamera(const std::string& id)
{
    return GetPointerFromMap<Camera>(m_openedCameras, m_openedCamerasMutex, id);
}

Camera* DeviceManager::FindOpenedCameraOrCL(const std::string& id, bool includeOtherCameras)
{
    if (Camera* camera = FindOpenedCamera(id))
        return camera;
    if (CLCamera* camera = GetPointerFromMap<CLCamera>(m_openedCLCameras, m_openedCLCamerasMutex, id))
        return camera;
    if (includeOtherCameras)
        return GetPointerFromMap<CLCamera>(m_openedOtherCameras, m_openedOtherCamerasMutex, id);
    return nullptr;
}

Camera* DeviceManager::FindListedCamera(const std::string& id)
{
    if (Camera* camera = FindDeviceListCamera(id))
        return camera;
    if (CLCamera* camera = GetPointerFromMap<CLCamera>(m_clCameraList, m_clCameraListMutex, id))
        return camera;
    return GetPointerFromMap<CLCamera>(m_otherCameraList, m_otherCameraListMutex, id);
}

bool DeviceManager::HasAddressConflict(Camera* camera)
{
    std::string ip = camera->GetInfo(ViewerBiz3::CAM_IP);
    if (ip.empty())
        return false;
    std::string listKey = camera->GetListKey();
    if (ip == GetCardInfo(listKey, ViewerBiz3::CARD_IP))
        return true;
    std::lock_guard<std::mutex> lock(m_deviceListMutex);
    for (auto& entry : m_deviceList) {
        Camera* other = entry.second;
        if (other != nullptr && other != camera && other->GetListKey() == listKey &&
            other->GetInfo(ViewerBiz3::CAM_IP) == ip)
            return true;
    }
    return false;
}

int DeviceManager::OpenCamera(std::string id)
{
    CallScope scope(*this);
    std::lock_guard<std::mutex> operation(m_operationMutex);
    Camera* camera = FindDeviceListCamera(id);
    if (camera == nullptr)
        return -1;
    if (HasAddressConflict(camera)) {
        Utilities::LogError(camera->GetName(), "Ip conflict.Please check if there are devices with the same IP address.",
                            1);
        return -10;
    }
    int result = camera->OpenCamera(1);
    if (result != 0)
        return result;
    {
        std::lock_guard<std::mutex> opened(m_openedCamerasMutex);
        m_openedCameras.emplace(camera->GetKey(), camera);
    }
    m_parameterManager.loadCameraParameters(camera);
    NotifyDeviceListUpdate(camera->GetListKey(), camera->GetKey());
    return 0;
}

int DeviceManager::CloseCamera(std::string id)
{
    CallScope scope(*this);
    std::unique_lock<std::mutex> operation(m_operationMutex);
    Camera* camera = FindOpenedCamera(id);
    if (camera == nullptr) {
        operation.unlock();
        return CloseCLCamera(id);
    }
    int result = camera->CloseCamera(true);
    if (result == 0) {
        {
            // By object rather than by key: a renamed USB camera sits under its new identifier.
            std::lock_guard<std::mutex> opened(m_openedCamerasMutex);
            EraseObject(m_openedCameras, camera);
        }
        m_parameterManager.saveCameraParameters(camera);
    }
    // The list is rebuilt twice at once; the next timed refresh comes a full period later.
    m_repeatPass.store(true);
    m_timerTicks.store(0);
    return result;
}

void DeviceManager::RemoveOpenedCamera(std::string id)
{
    std::lock_guard<std::mutex> operation(m_operationMutex);
    {
        // The device-list mutex comes before the opened-cameras mutex, in the discovery pass's order.
        std::lock_guard<std::mutex> devices(m_deviceListMutex);
        std::lock_guard<std::mutex> opened(m_openedCamerasMutex);
        auto found = m_deviceList.find(id);
        // A USB camera re-keyed under its new name still reports the key it was listed with.
        if (found == m_deviceList.end())
            found = std::find_if(m_deviceList.begin(), m_deviceList.end(),
                                 [&id](const auto& entry) { return entry.second != nullptr && entry.second->GetKey() == id; });
        if (found != m_deviceList.end()) {
            Camera* listed = found->second;
            m_deviceList.erase(found);
            m_openedCameras.erase(id);
            EraseObject(m_openedCameras, listed);
            // The caller is usually the camera's own watchdog, still running on the object.
            RetireCamera(listed);
            return;
        }
    }
    std::lock_guard<std::mutex> opened(m_openedCamerasMutex);
    std::lock_guard<std::mutex> openedCL(m_openedCLCamerasMutex);
    CLCamera* clCamera = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_clCameraListMutex);
        auto found = m_clCameraList.find(id);
        if (found != m_clCameraList.end())
            clCamera = found->second;
    }
    if (clCamera != nullptr) {
        clCamera->CloseCLCamera(false);
        m_openedCLCameras.erase(id);
        std::lock_guard<std::mutex> lock(m_clCameraListMutex);
        m_clCameraList.erase(id);
        return;
    }
    std::lock_guard<std::mutex> openedOther(m_openedOtherCamerasMutex);
    CLCamera* other = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_otherCameraListMutex);
        auto found = m_otherCameraList.find(id);
        if (found != m_otherCameraList.end()) {
            other = found->second;
            m_otherCameraList.erase(found);
        }
    }
    if (other != nullptr) {
        m_openedOtherCameras.erase(id);
        RetireCamera(other);
    }
}

int DeviceManager::StartGrab(std::string id)
{
    CallScope scope(*this);
    Camera* camera = FindOpenedCameraOrCL(id, true);
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
    CallScope scope(*this);
    Camera* camera = FindOpenedCameraOrCL(id, true);
    return camera == nullptr ? -1 : camera->StopGrab(true);
}

bool DeviceManager::IsGrabbing(std::string id)
{
    CallScope scope(*this);
    Camera* camera = FindOpenedCameraOrCL(id, true);
    return camera != nullptr && camera->IsGrabbing();
}

std::vector<std::string> DeviceManager::GetOpenedCameraIds()
{
    std::vector<std::string> ids;
    std::lock_guard<std::mutex> opened(m_openedCamerasMutex);
    std::lock_guard<std::mutex> openedCL(m_openedCLCamerasMutex);
    std::lock_guard<std::mutex> openedOther(m_openedOtherCamerasMutex);
    for (auto& entry : m_openedCameras)
        ids.push_back(entry.first);
    for (auto& entry : m_openedCLCameras)
        ids.push_back(entry.first);
    for (auto& entry : m_openedOtherCameras)
        ids.push_back(entry.first);
    return ids;
}

std::string DeviceManager::GetCameraInfo(std::string id, ViewerBiz3::CAM_INFO info)
{
    CallScope scope(*this);
    Camera* camera = FindListedCamera(id);
    return camera == nullptr ? std::string() : camera->GetInfo(info);
}

int DeviceManager::SetCameraInfo(std::string id, ViewerBiz3::CAM_INFO info, const std::string& value)
{
    CallScope scope(*this);
    Camera* camera = FindListedCamera(id);
    return camera == nullptr ? -1 : camera->SetInfo(info, value);
}

int DeviceManager::GetCameraNodeValue(std::string id, std::string node, std::string& value)
{
    CallScope scope(*this);
    Camera* camera = FindOpenedCameraOrCL(id, false);
    return camera == nullptr ? -1 : camera->GetNodeValue(node, value, true);
}

int DeviceManager::SetCameraNodeValue(std::string id, std::string node, std::string value)
{
    CallScope scope(*this);
    Camera* camera = FindOpenedCameraOrCL(id, false);
    return camera == nullptr ? -1 : camera->SetNodeValue(node, value, true);
}

int DeviceManager::GetCameraIntNodeInfo(std::string id, std::string node, std::string& value, std::string& min,
                                        std::string& max, std::string& inc)
{
    CallScope scope(*this);
    Camera* camera = FindOpenedCamera(id);
    return camera == nullptr ? -1 : camera->GetIntNodeInfo(node, value, min, max, inc, true);
}

const char* DeviceManager::GetXML(ViewerBiz3::FOCUS_TYPE type, std::string id)
{
    CallScope scope(*this);
    if (type == ViewerBiz3::FOCUS_CARD) {
        Card* card = FindOpenedCard(id);
        return card == nullptr ? nullptr : card->GetXML();
    }
    Camera* camera = FindOpenedCameraOrCL(id, false);
    if (camera == nullptr)
        return nullptr;
    ZYLGENICAM::IModule* module = camera->GetXML(type);
    return module == nullptr ? nullptr : module->GetXML();
}

GenApi_3_4::INodeMap* DeviceManager::GetNodeMap(ViewerBiz3::FOCUS_TYPE type, std::string id,
                                                ViewerBiz3::NodeMapType which)
{
    CallScope scope(*this);
    if (type == ViewerBiz3::FOCUS_CARD) {
        Card* card = FindOpenedCard(id);
        return card == nullptr ? nullptr : card->GetNodeMap();
    }
    Camera* camera = FindOpenedCameraOrCL(id, true);
    return camera == nullptr ? nullptr : camera->GetNodeMap(which);
}

void DeviceManager::SetFocusFlags(const std::string& id, bool focus)
{
    {
        // Adapters are rebuilt by every pass, so the flag is set while the list is held.
        std::lock_guard<std::mutex> lock(m_adapterListMutex);
        if (Card* card = FindInMap<Card>(m_adapterList, id))
            card->SetFlag2(focus ? 1 : 0);
    }
    if (Camera* camera = FindDeviceListCamera(id))
        camera->SetFlag3(focus);
}

int DeviceManager::SetFocus(ViewerBiz3::FOCUS_TYPE type, std::string id)
{
    if (type < 0 || type >= 4)
        return -1;
    CallScope scope(*this);
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
    CallScope scope(*this);
    Camera* camera = FindOpenedCamera(oldId);
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
    CallScope scope(*this);
    Camera* camera = FindDeviceListCamera(id);
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
    CallScope scope(*this);
    Camera* camera = FindDeviceListCamera(id);
    if (camera == nullptr)
        return -1;
    auto* showModeCamera = dynamic_cast<SLCamera*>(camera);
    if (!camera->IsKind(CameraKind::ShowMode) || showModeCamera == nullptr)
        return -2;
    return showModeCamera->GetCameraShowMode();
}

int DeviceManager::FirmwareUpgrade(const std::string& id, const std::string& file, int* progress, bool* done)
{
    CallScope scope(*this);
    Camera* camera = FindOpenedCamera(id);
    return camera == nullptr ? -1 : camera->FirmwareUpgrade(file, progress, done);
}

int DeviceManager::SetCameraImageMode(std::string id, int mode, bool notify)
{
    CallScope scope(*this);
    Camera* camera = FindOpenedCamera(id);
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
    CallScope scope(*this);
    Camera* camera = FindOpenedCamera(id);
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
    CallScope scope(*this);
    Camera* camera = FindDeviceListCamera(id);
    return camera == nullptr ? -1 : camera->ModifyCameraIP(ip, mask, gateway, persistent);
}
