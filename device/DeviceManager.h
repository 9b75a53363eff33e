// The process-wide owner of every camera and card object: it routes each
// per-device request of the interface by identifier, keeps the live device list
// (discovery thread paced by a timer thread), the host adapters, the Camera Link
// cards and cameras, and raises the device-level notifications.
#pragma once

#include <atomic>
#include <condition_variable>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ViewerBiz3Types.h"
#include "ZylSdk.h"
#include "camera/CameraHost.h"

class Camera;
class CLCamera;
class Card;

class DeviceManager final : public CameraHost {
public:
    using CameraMap = std::unordered_map<std::string, Camera*>;
    using CLCameraMap = std::unordered_map<std::string, CLCamera*>;
    using CardMap = std::unordered_map<std::string, Card*>;

    static DeviceManager* getInstance();
    void Release();

    DeviceManager(const DeviceManager&) = delete;
    DeviceManager& operator=(const DeviceManager&) = delete;

    // Cameras (a camera is named by its map key or by its name, CAM_INFO 0).
    int OpenCamera(std::string id);
    int CloseCamera(std::string id);
    void RemoveOpenedCamera(std::string id) override;
    int StartGrab(std::string id);
    int StopGrab(std::string id);
    bool IsGrabbing(std::string id);
    std::vector<std::string> GetOpenedCameraIds();
    std::string GetCameraInfo(std::string id, ViewerBiz3::CAM_INFO info);
    int SetCameraInfo(std::string id, ViewerBiz3::CAM_INFO info, const std::string& value);
    int GetCameraNodeValue(std::string id, std::string node, std::string& value);
    int SetCameraNodeValue(std::string id, std::string node, std::string value);
    int GetCameraIntNodeInfo(std::string id, std::string node, std::string& value, std::string& min,
                             std::string& max, std::string& inc);
    // The GenICam description text of the selected module, null when absent.
    const char* GetXML(ViewerBiz3::FOCUS_TYPE type, std::string id);
    GenApi_3_4::INodeMap* GetNodeMap(ViewerBiz3::FOCUS_TYPE type, std::string id, ViewerBiz3::NodeMapType which);
    int SetFocus(ViewerBiz3::FOCUS_TYPE type, std::string id);
    int ModifyCameraId(std::string oldId, std::string newId);
    int SetSLCameraShowMode(std::string id, int mode);
    int GetSLCameraShowMode(std::string id);
    int FirmwareUpgrade(const std::string& id, const std::string& file, int* progress, bool* done);
    int SetCameraImageMode(std::string id, int mode, bool notify);
    int GetCameraImageMode(std::string id);
    int ModifyCameraIP(std::string id, const std::string& ip, const std::string& mask, const std::string& gateway,
                       bool persistent);

    // Notifications, dropped once destruction has begun.
    void NotifyFocusUpdate(std::string id, ViewerBiz3::FOCUS_TYPE type);
    std::size_t NotifyImageUpdate(std::string key, ZYLGENICAM::IImage* image, int extra1, int extra2) override;
    void NotifyAcqStatisticUpdate(std::string key, bool flag) override;
    void NotifyDeviceListUpdate(std::string listKey, std::string key) override;
    void NotifyDeviceListUpdate() override;

    // Discovery and the device-list refresh.
    int RefreshDeviceList(int types) override;
    void SetTLTypeList(unsigned long long mask);
    unsigned long long GetTLTypeList();
    bool CameraIsOpened(ZYLGENICAM::ICameraInfo* info);
    void DiscoveryDeviceList();
    void TimerUpdateDeviceListFunction();
    void DiscoveryCLList();
    void DiscoveryCLCamera();

    // Host network adapters and dotted IPv4 texts.
    std::unordered_map<std::string, Card*> GetNetworkCards();
    // The text helpers use no manager state: callable without the instance.
    static std::vector<std::string> StringSplit(const std::string& text, char delimiter);
    static bool IsNetworkSameSegment(std::string ip1, std::string mask1, std::string ip2, std::string mask2);
    static std::string GetNetworkSegment(std::string ip, std::string mask);

    // Camera Link cards and cameras.
    int OpenCard(std::string key);
    int CloseCard(std::string key);
    std::vector<std::string> GetOpenedCardIds();
    std::string GetCardInfo(std::string key, ViewerBiz3::CARD_INFO info);
    int GetCardNodeValue(std::string key, std::string node, std::string& value);
    int SetCardNodeValue(std::string key, std::string node, std::string value);
    int OpenCLCamera(std::string key, std::string protocol, std::string serialPort);
    int CloseCLCamera(std::string key);
    void AddCLCamera(Camera* camera) override;
    int GetCLProtocolsAndSerials(std::list<std::string>& protocols, std::list<std::string>& serials);

private:
    DeviceManager();
    ~DeviceManager();

    // Counts a host call that may hold a camera pointer found in a map, so
    // objects dropped from the maps meanwhile are destroyed only once no such
    // call is running.
    class CallScope {
    public:
        explicit CallScope(DeviceManager& manager);
        ~CallScope();
        CallScope(const CallScope&) = delete;
        CallScope& operator=(const CallScope&) = delete;

    private:
        DeviceManager& m_manager;
    };

    // Lookups; the "opened" ones search the opened cameras, then the opened
    // Camera Link cameras, then (when asked) the opened other cameras.
    Camera* FindDeviceListCamera(const std::string& id);
    Camera* FindOpenedCamera(const std::string& id);
    Camera* FindOpenedCameraOrCL(const std::string& id, bool includeOtherCameras);
    Camera* FindListedCamera(const std::string& id);
    CLCamera* FindCLCamera(const std::string& key, bool& serialOnly);
    Card* FindOpenedCard(const std::string& key);

    bool HasAddressConflict(Camera* camera);
    void SetFocusFlags(const std::string& id, bool focus);
    int BindCLCamera(CLCamera* camera, const std::string& protocol, const std::string& serialPort,
                     CLCameraMap& openedMap, std::mutex& openedMutex);
    void StartDiscoveryThread();
    void RunCameraLinkRefresh(bool cardsAndCameras);
    bool DiscoverCLCards();
    bool DiscoverCLCameras();
    // One pass over the device list; the caller holds the four pass locks.
    void RebuildDeviceList(std::list<ZYLGENICAM::ICameraInfo*>& records);
    void DropUnopenedCameras();
    void RebuildAdapterList();
    void AttachOpenedCameras();
    Camera* CreateListedCamera(ZYLGENICAM::ICameraInfo* info, const std::string& identifier);
    void AttachToAdapter(Camera* camera, ZYLGENICAM::ICameraInfo* info, int tlType);
    void DropUnusedAdapters();
    void SendPendingIdUpdates();
    void RetireCamera(Camera* camera);
    void DestroyRetiredCameras();
    void StopBackgroundThreads();
    void DestroyAllDevices();

    static DeviceManager* m_deviceManager;
    static std::mutex m_mtx_manager;

    std::mutex m_refreshMutex;
    std::mutex m_deviceListMutex;
    std::mutex m_adapterListMutex;
    std::mutex m_openedCamerasMutex;
    std::mutex m_operationMutex;
    CameraMap m_deviceList;
    CameraMap m_openedCameras;
    CardMap m_adapterList;
    CardMap m_secondAdapterMap;
    std::mutex m_clCameraListMutex;
    std::mutex m_otherCameraListMutex;
    std::mutex m_cardListMutex;
    std::mutex m_secondAdapterMapMutex;
    std::mutex m_openedCLCamerasMutex;
    std::mutex m_openedOtherCamerasMutex;
    std::mutex m_openedCardsMutex;
    CLCameraMap m_clCameraList;
    CLCameraMap m_otherCameraList;
    CLCameraMap m_openedCLCameras;
    CLCameraMap m_openedOtherCameras;
    CardMap m_cardList;
    // Reserved for a second family of frame-grabber cards; nothing fills it yet.
    CardMap m_spareCardMap;
    CardMap m_openedCards;
    // Reserved like the map above; listed in no notification.
    CardMap m_furtherCardMap;
    std::thread* m_discoveryThread = nullptr;
    std::thread m_timerThread;
    // Cuts the timer's one-second tick short at shutdown.
    std::mutex m_timerMutex;
    std::condition_variable m_timerWake;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_idle{true};
    std::atomic<bool> m_timerEnded{false};
    std::atomic<bool> m_discoveryEnded{false};
    std::condition_variable* m_refreshCondition = nullptr;
    std::string m_focusId;
    // Guards the focus identifier, which host threads write concurrently.
    std::mutex m_focusMutex;
    // The timer thread, the discovery thread and host threads all touch these
    // three, so they are atomic rather than plain fields.
    std::atomic<int> m_timerTicks{0};
    std::atomic<bool> m_repeatPass{false};
    std::atomic<bool> m_notificationsEnabled{true};
    std::atomic<unsigned long long> m_tlTypeMask{15};

    // Safety additions: Camera Link refresh threads still running (the
    // destructor waits for them), host calls in progress, and camera objects
    // dropped from the maps but possibly still referenced by such a call.
    std::atomic<int> m_clRefreshThreads{0};
    std::atomic<int> m_activeCalls{0};
    std::mutex m_retiredMutex;
    std::vector<Camera*> m_retiredCameras;
    // Renames found by a pass (old key, new identifier), sent once its locks
    // are released so a listener may call back in; guarded by the operation mutex.
    std::vector<std::pair<std::string, std::string>> m_pendingIdUpdates;
};
