// Every camera and card object the device manager knows, in the maps a host's
// key or name is looked up in, each with its mutex; and the lifetime of camera
// objects dropped from the maps while a host call may still use them.
//
// Lock order, outermost first (docs/architecture.md): the camera's online
// mutex, operation, adapters, device list, opened cameras, opened Camera Link
// cameras, Camera Link list, opened other cameras, other list. The remaining
// card mutexes and the retired mutex are taken alone (innermost).
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "ViewerBiz3Types.h"

class Camera;
class CLCamera;
class Card;

class DeviceRegistry {
public:
    using CameraMap = std::unordered_map<std::string, Camera*>;
    using CLCameraMap = std::unordered_map<std::string, CLCamera*>;
    using CardMap = std::unordered_map<std::string, Card*>;

    DeviceRegistry();
    ~DeviceRegistry();
    DeviceRegistry(const DeviceRegistry&) = delete;
    DeviceRegistry& operator=(const DeviceRegistry&) = delete;

    // Counts a host call that may hold a camera pointer found in a map, so
    // objects dropped from the maps meanwhile are destroyed only once no such
    // call is running.
    class CallScope {
    public:
        explicit CallScope(DeviceRegistry& registry);
        ~CallScope();
        CallScope(const CallScope&) = delete;
        CallScope& operator=(const CallScope&) = delete;

    private:
        DeviceRegistry& m_registry;
    };

    // Lookups by key or name; the "opened" ones search the opened cameras, then
    // the opened Camera Link cameras, then (when asked) the opened other cameras.
    Camera* FindDeviceListCamera(const std::string& id);
    Camera* FindOpenedCamera(const std::string& id);
    Camera* FindOpenedCameraOrCL(const std::string& id, bool includeOtherCameras);
    Camera* FindListedCamera(const std::string& id);
    CLCamera* FindCLCamera(const std::string& key, bool& serialOnly);
    Card* FindOpenedCard(const std::string& key);
    std::string GetCardInfo(const std::string& key, ViewerBiz3::CARD_INFO info);
    bool HasAddressConflict(Camera* camera);

    std::vector<std::string> GetOpenedCameraIds();
    std::vector<std::string> GetOpenedCardIds();
    // The keys of the device-list notification: cards (adapters, frame
    // grabbers) and cameras (discovered, Camera Link, serial-only).
    void ListedKeys(std::vector<std::string>& cardKeys, std::vector<std::string>& cameraKeys);

    // A lost camera leaves every map; the caller holds the operation mutex.
    void RemoveLostCamera(const std::string& id);

    // A camera dropped from the maps is destroyed by DestroyRetiredCameras once no host call runs.
    void RetireCamera(Camera* camera);
    void DestroyRetiredCameras();
    // At shutdown, after every thread that could reach an object has ended.
    void DestroyAll();

    // Serialises the operations that change what is open against the discovery pass.
    std::mutex operationMutex;
    std::mutex adapterListMutex;
    std::mutex deviceListMutex;
    std::mutex openedCamerasMutex;
    CardMap adapterList;
    CameraMap deviceList;
    CameraMap openedCameras;
    std::mutex secondAdapterMapMutex;
    CardMap secondAdapterMap;

    std::mutex clCameraListMutex;
    std::mutex otherCameraListMutex;
    std::mutex openedCLCamerasMutex;
    std::mutex openedOtherCamerasMutex;
    CLCameraMap clCameraList;
    CLCameraMap otherCameraList;
    CLCameraMap openedCLCameras;
    CLCameraMap openedOtherCameras;
    std::mutex cardListMutex;
    std::mutex openedCardsMutex;
    CardMap cardList;
    // Reserved for a second family of frame-grabber cards; nothing fills it yet.
    CardMap spareCardMap;
    CardMap openedCards;
    // Reserved like the map above; listed in no notification.
    CardMap furtherCardMap;

private:
    std::atomic<int> m_activeCalls{0};
    std::mutex m_retiredMutex;
    std::vector<std::unique_ptr<Camera>> m_retiredCameras;
};
