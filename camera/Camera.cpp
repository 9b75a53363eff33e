#include "camera/Camera.h"

#include <mutex>

#include "camera/CameraHost.h"
#include "camera/SharedFramePool.h"
#include "camera/SteadyClock.h"
#include "genapi/GenApi.h"
#include "log/Log.h"
#include "node/NodeAccess.h"

namespace {
constexpr int notifyHost = 1;
// Node access asked of a camera that is not open, or whose watchdog no longer runs.
constexpr int nodeAccessWithoutOpenCamera = -12;
// A set address that takes effect without a reboot; it counts as success.
constexpr int64_t ipSetWithoutReboot = -4;

GenApi_3_4::INodeMap* NodeMapOfModule(ZYLGENICAM::IModule* module)
{
    return module ? module->GetNodeMap() : nullptr;
}
} // namespace

Camera::Camera(ZYLGENICAM::ICamera* camera) : m_framePool(std::make_shared<SharedFramePool>()), m_camera(camera)
{
    ParametersReset();
}

Camera::~Camera()
{
    ShutDownForDestruction();
    if (ZYLGENICAM::ICamera* sdkCamera = m_camera.exchange(nullptr))
        sdkCamera->Destroy();
}

void Camera::ShutDownForDestruction()
{
    if (m_opened.load())
        CloseCamera(false);
    // A camera whose device refused to close still has its threads: stop them all the same.
    std::unique_lock<std::mutex> lock(m_stateMutex);
    ShutDownThreads();
}

uint64_t Camera::NowMs()
{
    return SteadyMilliseconds();
}

void Camera::ParametersReset()
{
    m_available.store(false);
    m_online.store(false);
    m_opened.store(false);
    m_grabbing.store(false);
    m_statistics.Reset();
    m_auxiliaryNodeMap.store(nullptr);
    m_featureNodeMap.store(nullptr);
    m_texts.ResetHostTexts();
}

ZYLGENICAM::IModule* Camera::ModuleOf(int index) const
{
    ZYLGENICAM::ICamera* sdkCamera = m_camera.load();
    switch (index) {
    case 0:
        return sdkCamera->GetModule0();
    case 1:
        return sdkCamera->GetModule1();
    case 2:
        return sdkCamera->GetModule2();
    case 3:
        return sdkCamera->GetModule3();
    case 4:
        return sdkCamera->GetModule4();
    default:
        return nullptr;
    }
}

int Camera::OpenCamera(int accessMode)
{
    std::lock_guard<std::mutex> lock(m_stateMutex);
    const std::string name = GetName();
    if (m_opened.load()) {
        Utilities::LogInfo(name, "Failed to open the camera. The camera is already open.", notifyHost);
        return -1;
    }
    const uint64_t start = NowMs();
    ZYLGENICAM::ICamera* sdkCamera = m_camera.load();
    const int result = sdkCamera ? sdkCamera->Open(accessMode) : -1;
    if (result != 0) {
        Utilities::LogError(name, "Failed to open the camera, errorcode = " + std::to_string(result), notifyHost);
        return result;
    }
    GenApi_3_4::INodeMap* featureNodeMap = NodeMapOfModule(sdkCamera->GetModule3());
    if (!featureNodeMap) {
        sdkCamera->Close();
        Utilities::LogError(name, "Failed to open the camera, camera node map is NULL", notifyHost);
        return -2;
    }
    {
        std::unique_lock<std::shared_mutex> nodeLock(m_nodeAccessMutex);
        m_featureNodeMap.store(featureNodeMap);
        m_auxiliaryNodeMap.store(NodeMapOfModule(sdkCamera->GetModule2()));
    }
    m_opened.store(true);
    m_available.store(true);
    m_online.store(true);
    StartWatchdogIfAbsent();
    Utilities::LogInfo(name, "Open camera success, cost time = " + std::to_string(NowMs() - start) + "ms", notifyHost);
    return 0;
}

int Camera::CloseCamera(bool notify)
{
    std::unique_lock<std::mutex> lock(m_stateMutex);
    ZYLGENICAM::ICamera* sdkCamera = m_camera.load();
    if (!sdkCamera) {
        if (notify)
            Utilities::LogInfo(GetName(), "Failed to close the camera. Handle is NULL.", notifyHost);
        return -1;
    }
    // A lost camera's device was let go already; the camera itself still closes.
    if (!sdkCamera->IsOpen() && !m_lostDeviceReleased.exchange(false))
        return -2;
    lock.unlock();
    StopGrab(false);
    lock.lock();
    m_opened.store(false);
    m_available.store(false);
    if (notify) {
        if (CameraHost* host = GetCameraHost())
            host->NotifyDeviceListUpdate(GetListKey(), GetKey());
    }
    ShutDownThreads();
    {
        std::unique_lock<std::shared_mutex> nodeLock(m_nodeAccessMutex);
        sdkCamera->Close();
        ParametersReset();
    }
    if (notify)
        Utilities::LogInfo(GetName(), "Close camera success!", notifyHost);
    return 0;
}

void Camera::ShutDownThreads()
{
    m_watchdog.RequestStop();
    m_acquisition.RequestExit();
    // A lost camera's watchdog may be the very thread that is closing it here.
    m_watchdog.Finish();
    m_acquisition.Join();
    m_acquisition.ReleaseQueuedImages();
}

void Camera::SetCamera(ZYLGENICAM::ICamera* camera)
{
    m_camera.store(camera);
}

bool Camera::IsOnline()
{
    ZYLGENICAM::ICamera* sdkCamera = m_camera.load();
    return sdkCamera && sdkCamera->IsConnected();
}

int Camera::FirmwareUpgrade(const std::string&, int*, bool*)
{
    return -1;
}

// ---- Node access ----

int Camera::NodeAccessRefusal() const
{
    if (!m_watchdog.IsRunning() || !m_opened.load() || !m_camera.load())
        return nodeAccessWithoutOpenCamera;
    return 0;
}

void Camera::LogNodeFailure(const std::string& prefix, const std::string& nodeName, const std::string& message)
{
    if (!message.empty())
        Utilities::LogError(GetName(), prefix + nodeName + ", message = " + message, notifyHost);
}

int Camera::GetNodeValue(std::string nodeName, std::string& value, bool)
{
    std::shared_lock<std::shared_mutex> nodeLock(m_nodeAccessMutex);
    if (const int refusal = NodeAccessRefusal())
        return refusal;
    std::string message;
    const int result = Utilities::GetNodeValue(m_featureNodeMap.load(), nodeName, value, message);
    // A node that is not readable right now is routine while polling.
    if (result != 0 && result != Utilities::NODE_MISSING)
        LogNodeFailure("Failed to GetNodeValue. nodeName = ", nodeName, message);
    return result;
}

int Camera::SetNodeValue(std::string nodeName, std::string value, bool)
{
    std::shared_lock<std::shared_mutex> nodeLock(m_nodeAccessMutex);
    if (const int refusal = NodeAccessRefusal())
        return refusal;
    std::string message;
    const int result = Utilities::SetNodeValue(m_featureNodeMap.load(), nodeName, value, message);
    if (result != 0)
        LogNodeFailure("Failed to SetNodeValue. nodeName = ", nodeName, message);
    return result;
}

int Camera::GetIntNodeInfo(std::string nodeName, std::string& value, std::string& min, std::string& max,
                           std::string& inc, bool featureNodeMap)
{
    std::shared_lock<std::shared_mutex> nodeLock(m_nodeAccessMutex);
    if (const int refusal = NodeAccessRefusal())
        return refusal;
    std::string message;
    GenApi_3_4::INodeMap* nodeMap = featureNodeMap ? m_featureNodeMap.load() : m_auxiliaryNodeMap.load();
    const int result = Utilities::GetIntNodeInfo(nodeMap, nodeName, value, min, max, inc, message);
    if (result != 0)
        LogNodeFailure("Failed to GetIntNodeInfo. nodeName = ", nodeName, message);
    return result;
}

GenApi_3_4::INodeMap* Camera::GetNodeMap(ViewerBiz3::NodeMapType type)
{
    if (!m_camera.load()) {
        Utilities::LogError(GetName(), "Failed to get XML. Handle is NULL.", notifyHost);
        return nullptr;
    }
    if (type < ViewerBiz3::NODEMAP_MODULE0 || type > ViewerBiz3::NODEMAP_MODULE4)
        return nullptr;
    return NodeMapOfModule(ModuleOf(type));
}

ZYLGENICAM::IModule* Camera::GetXML(ViewerBiz3::FOCUS_TYPE type)
{
    if (!m_camera.load()) {
        Utilities::LogError(GetName(), "Failed to get XML. Handle is NULL.", notifyHost);
        return nullptr;
    }
    switch (type) {
    case ViewerBiz3::FOCUS_CAMERA:
        return ModuleOf(0);
    case ViewerBiz3::FOCUS_CARD:
        return ModuleOf(2);
    case ViewerBiz3::FOCUS_CAMERA_FEATURES:
        return ModuleOf(3);
    default:
        return nullptr;
    }
}

GenApi_3_4::INodeMap* Camera::GetFeatureNodeMap() const
{
    return m_featureNodeMap.load();
}

void Camera::SetFeatureNodeMap(GenApi_3_4::INodeMap* nodeMap)
{
    std::unique_lock<std::shared_mutex> nodeLock(m_nodeAccessMutex);
    m_featureNodeMap.store(nodeMap);
}

GenApi_3_4::INodeMap* Camera::GetAuxiliaryNodeMap() const
{
    return m_auxiliaryNodeMap.load();
}

void Camera::SetAuxiliaryNodeMap(GenApi_3_4::INodeMap* nodeMap)
{
    std::unique_lock<std::shared_mutex> nodeLock(m_nodeAccessMutex);
    m_auxiliaryNodeMap.store(nodeMap);
}

// ---- Address change ----

int Camera::ModifyCameraIP(const std::string& ip, const std::string& mask, const std::string& gateway, bool persistent)
{
    std::lock_guard<std::mutex> lock(m_stateMutex);
    ZYLGENICAM::ICamera* sdkCamera = m_camera.load();
    if (m_opened.load() || !sdkCamera)
        return -1;
    ZYLGENICAM::ICameraInfo* info = sdkCamera->GetDeviceInfo();
    if (!info)
        return -1;
    int64_t result =
        ZYLGENICAM::SetCameraIP(info->GetSerialNumber(), ip.c_str(), mask.c_str(), gateway.c_str(), persistent);
    if (result == ipSetWithoutReboot)
        result = 0;
    if (result != 0)
        Utilities::LogError(GetName(),
                            "Set camera ip failed, ip = " + ip + ", mask = " + mask + ", gateway = " + gateway +
                                ", ret = " + std::to_string(result),
                            notifyHost);
    if (CameraHost* host = GetCameraHost())
        host->RefreshDeviceList(ZYLGENICAM::TL_GIGE);
    return static_cast<int>(result);
}
