#include "device/DeviceRegistry.h"

#include <algorithm>

#include "camera/CLCamera.h"
#include "camera/Camera.h"
#include "device/Card.h"
#include "device/DeviceMaps.h"

DeviceRegistry::DeviceRegistry() = default;

DeviceRegistry::~DeviceRegistry() = default;

DeviceRegistry::CallScope::CallScope(DeviceRegistry& registry) : m_registry(registry)
{
    m_registry.m_activeCalls.fetch_add(1);
}

DeviceRegistry::CallScope::~CallScope()
{
    m_registry.m_activeCalls.fetch_sub(1);
}

Camera* DeviceRegistry::FindDeviceListCamera(const std::string& id)
{
    return GetPointerFromMap<Camera>(deviceList, deviceListMutex, id);
}

Camera* DeviceRegistry::FindOpenedCamera(const std::string& id)
{
    return GetPointerFromMap<Camera>(openedCameras, openedCamerasMutex, id);
}

Camera* DeviceRegistry::FindOpenedCameraOrCL(const std::string& id, bool includeOtherCameras)
{
    if (Camera* camera = FindOpenedCamera(id))
        return camera;
    if (CLCamera* camera = GetPointerFromMap<CLCamera>(openedCLCameras, openedCLCamerasMutex, id))
        return camera;
    if (includeOtherCameras)
        return GetPointerFromMap<CLCamera>(openedOtherCameras, openedOtherCamerasMutex, id);
    return nullptr;
}

Camera* DeviceRegistry::FindListedCamera(const std::string& id)
{
    if (Camera* camera = FindDeviceListCamera(id))
        return camera;
    if (CLCamera* camera = GetPointerFromMap<CLCamera>(clCameraList, clCameraListMutex, id))
        return camera;
    return GetPointerFromMap<CLCamera>(otherCameraList, otherCameraListMutex, id);
}

CLCamera* DeviceRegistry::FindCLCamera(const std::string& key, bool& serialOnly)
{
    serialOnly = false;
    if (CLCamera* camera = GetPointerFromMap<CLCamera>(clCameraList, clCameraListMutex, key))
        return camera;
    serialOnly = true;
    return GetPointerFromMap<CLCamera>(otherCameraList, otherCameraListMutex, key);
}

Card* DeviceRegistry::FindOpenedCard(const std::string& key)
{
    return GetPointerFromMap<Card>(openedCards, openedCardsMutex, key);
}

std::string DeviceRegistry::GetCardInfo(const std::string& key, ViewerBiz3::CARD_INFO info)
{
    // Read while the map is held: discovery replaces the adapters on every pass.
    auto readFrom = [&key, info](CardMap& map, std::mutex& mutex, std::string& text) {
        std::lock_guard<std::mutex> lock(mutex);
        Card* card = FindInMap<Card>(map, key);
        if (card != nullptr)
            text = card->GetInfo(info);
        return card != nullptr;
    };
    std::string text;
    if (readFrom(adapterList, adapterListMutex, text) || readFrom(cardList, cardListMutex, text) ||
        readFrom(secondAdapterMap, secondAdapterMapMutex, text))
        return text;
    return "";
}

bool DeviceRegistry::HasAddressConflict(Camera* camera)
{
    std::string ip = camera->GetInfo(ViewerBiz3::CAM_IP);
    if (ip.empty())
        return false;
    std::string listKey = camera->GetListKey();
    if (ip == GetCardInfo(listKey, ViewerBiz3::CARD_IP))
        return true;
    std::lock_guard<std::mutex> lock(deviceListMutex);
    for (auto& entry : deviceList) {
        Camera* other = entry.second;
        if (other != nullptr && other != camera && other->GetListKey() == listKey &&
            other->GetInfo(ViewerBiz3::CAM_IP) == ip)
            return true;
    }
    return false;
}

std::vector<std::string> DeviceRegistry::GetOpenedCameraIds()
{
    std::vector<std::string> ids;
    std::lock_guard<std::mutex> opened(openedCamerasMutex);
    std::lock_guard<std::mutex> openedCL(openedCLCamerasMutex);
    std::lock_guard<std::mutex> openedOther(openedOtherCamerasMutex);
    for (auto& entry : openedCameras)
        ids.push_back(entry.first);
    for (auto& entry : openedCLCameras)
        ids.push_back(entry.first);
    for (auto& entry : openedOtherCameras)
        ids.push_back(entry.first);
    return ids;
}

std::vector<std::string> DeviceRegistry::GetOpenedCardIds()
{
    // Read under the map's mutex: host threads open and close cards meanwhile.
    std::vector<std::string> ids;
    AppendKeys(openedCards, openedCardsMutex, ids);
    return ids;
}

void DeviceRegistry::ListedKeys(std::vector<std::string>& cardKeys, std::vector<std::string>& cameraKeys)
{
    AppendKeys(adapterList, adapterListMutex, cardKeys);
    AppendKeys(cardList, cardListMutex, cardKeys);
    AppendKeys(secondAdapterMap, secondAdapterMapMutex, cardKeys);
    AppendKeys(deviceList, deviceListMutex, cameraKeys);
    AppendKeys(clCameraList, clCameraListMutex, cameraKeys);
    AppendKeys(otherCameraList, otherCameraListMutex, cameraKeys);
}

void DeviceRegistry::RemoveLostCamera(const std::string& id)
{
    {
        // The device-list mutex comes before the opened-cameras mutex, in the discovery pass's order.
        std::lock_guard<std::mutex> devices(deviceListMutex);
        std::lock_guard<std::mutex> opened(openedCamerasMutex);
        auto found = deviceList.find(id);
        // A USB camera re-keyed under its new name still reports the key it was listed with.
        if (found == deviceList.end())
            found = std::find_if(deviceList.begin(), deviceList.end(), [&id](const auto& entry) {
                return entry.second != nullptr && entry.second->GetKey() == id;
            });
        if (found != deviceList.end()) {
            Camera* listed = found->second;
            deviceList.erase(found);
            openedCameras.erase(id);
            EraseObject(openedCameras, listed);
            // The caller is usually the camera's own watchdog, still running on the object.
            RetireCamera(listed);
            return;
        }
    }
    std::lock_guard<std::mutex> opened(openedCamerasMutex);
    std::lock_guard<std::mutex> openedCL(openedCLCamerasMutex);
    CLCamera* clCamera = nullptr;
    {
        std::lock_guard<std::mutex> lock(clCameraListMutex);
        auto found = clCameraList.find(id);
        if (found != clCameraList.end())
            clCamera = found->second;
    }
    if (clCamera != nullptr) {
        clCamera->CloseCLCamera(false);
        openedCLCameras.erase(id);
        std::lock_guard<std::mutex> lock(clCameraListMutex);
        clCameraList.erase(id);
        return;
    }
    std::lock_guard<std::mutex> openedOther(openedOtherCamerasMutex);
    CLCamera* other = nullptr;
    {
        std::lock_guard<std::mutex> lock(otherCameraListMutex);
        auto found = otherCameraList.find(id);
        if (found != otherCameraList.end()) {
            other = found->second;
            otherCameraList.erase(found);
        }
    }
    if (other != nullptr) {
        openedOtherCameras.erase(id);
        RetireCamera(other);
    }
}

void DeviceRegistry::RetireCamera(Camera* camera)
{
    if (camera == nullptr)
        return;
    std::lock_guard<std::mutex> lock(m_retiredMutex);
    m_retiredCameras.emplace_back(camera);
}

void DeviceRegistry::DestroyRetiredCameras()
{
    std::vector<std::unique_ptr<Camera>> doomed;
    {
        std::lock_guard<std::mutex> lock(m_retiredMutex);
        doomed.swap(m_retiredCameras);
    }
    // Taken out of the list before the test: a call that started later cannot reach them.
    if (m_activeCalls.load() != 0) {
        std::lock_guard<std::mutex> lock(m_retiredMutex);
        for (auto& camera : doomed)
            m_retiredCameras.push_back(std::move(camera));
    }
}

void DeviceRegistry::DestroyAll()
{
    // A lost camera's watchdog may still be handing itself over; it holds this mutex until done.
    std::lock_guard<std::mutex> online(onlineMutex);
    {
        std::lock_guard<std::mutex> lock(m_retiredMutex);
        m_retiredCameras.clear();
    }
    // Cards only reference their card cameras, which the camera lists own.
    ClearMap(adapterList, adapterListMutex);
    ClearMap(secondAdapterMap, secondAdapterMapMutex);
    ClearMap(cardList, cardListMutex);
    ClearMap(spareCardMap, cardListMutex);
    ClearMap(furtherCardMap, cardListMutex);
    {
        std::lock_guard<std::mutex> lock(openedCardsMutex);
        openedCards.clear();
    }
    {
        std::lock_guard<std::mutex> lock(openedCamerasMutex);
        openedCameras.clear();
    }
    ClearMap(deviceList, deviceListMutex);
    {
        std::lock_guard<std::mutex> opened(openedCLCamerasMutex);
        openedCLCameras.clear();
    }
    {
        std::lock_guard<std::mutex> opened(openedOtherCamerasMutex);
        openedOtherCameras.clear();
    }
    ClearMap(clCameraList, clCameraListMutex);
    ClearMap(otherCameraList, otherCameraListMutex);
}
