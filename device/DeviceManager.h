// The process-wide owner of every camera and card object, and the face the
// interface's relays call: it routes each per-device request by identifier to
// the camera or card found in the registry, hands the device list to the
// discovery pass and Camera Link to its own class, and raises the device-level
// notifications. It also starts and stops the camera SDK.
#pragma once

#include <atomic>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "ViewerBiz3Types.h"
#include "ZylSdk.h"
#include "camera/CameraHost.h"
#include "device/CameraLinkDevices.h"
#include "device/DeviceDiscovery.h"
#include "device/DeviceRegistry.h"

class Camera;
class CLCamera;
class Card;

class DeviceManager final : public CameraHost {
public:
    using CardMap = DeviceRegistry::CardMap;

    // Starts the camera SDK and returns the manager, created on first use. The
    // SDK's own result is not needed: discovery shows what it can reach.
    static DeviceManager* Start();
    // Destroys the manager (one is set up first when none exists, so the log is
    // started as by Init) and stops the camera SDK.
    static void Shutdown();
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
    int GetCameraIntNodeInfo(std::string id, std::string node, std::string& value, std::string& min, std::string& max,
                             std::string& inc);
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

    // Host network adapters (owned by the caller) and dotted IPv4 texts.
    static std::unordered_map<std::string, Card*> GetNetworkCards();
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
    friend struct std::default_delete<DeviceManager>;
    DeviceManager();
    ~DeviceManager();

    void SetFocusFlags(const std::string& id, bool focus);
    void StopBackgroundThreads();

    DeviceRegistry m_registry;
    DeviceDiscovery m_discovery;
    CameraLinkDevices m_cameraLink;
    std::string m_focusId;
    // Guards the focus identifier, which host threads write concurrently.
    std::mutex m_focusMutex;
    std::atomic<bool> m_notificationsEnabled{true};
};
