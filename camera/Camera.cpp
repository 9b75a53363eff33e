#include "camera/Camera.h"

#include <mutex>

#include "camera/CameraHost.h"
#include "camera/SharedFramePool.h"
#include "device/Card.h"
#include "genapi/GenApi.h"
#include "log/Log.h"
#include "node/NodeAccess.h"

using ViewerBiz3::CAM_INFO;

std::mutex onlineMutex;

namespace {
constexpr auto pollInterval = std::chrono::milliseconds(5);
// A lost camera must be stopped, dropped and announced within about a second: the watchdog looks
// four times a second, and a look costs the device nothing while frames keep coming.
constexpr auto watchdogPeriod = std::chrono::milliseconds(250);
constexpr int notifyHost = 1;
constexpr uint16_t cameraLinkKind = 4;
const char* const virtualCameraPrefix = "Virtual camera-";
const char* const placeholderText = "NA";

std::string AsDecimal(bool flag)
{
    return flag ? "1" : "0";
}

std::string AsDecimal(uint64_t value)
{
    return std::to_string(value);
}

std::string WithThreeDecimals(float value)
{
    return Utilities::ToStringWithPrecision(value, 3);
}

GenApi_3_4::INodeMap* NodeMapOfModule(ZYLGENICAM::IModule* module)
{
    return module ? module->GetNodeMap() : nullptr;
}
} // namespace

Camera::Camera(ZYLGENICAM::ICamera* camera) : m_framePool(std::make_shared<SharedFramePool>()), m_camera(camera)
{
    m_nodeAccessRefused.store(false);
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
    return static_cast<uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
            .count());
}

void Camera::WaitUntil(const std::function<bool()>& condition)
{
    while (!condition())
        std::this_thread::sleep_for(pollInterval);
}

void Camera::ParametersReset()
{
    m_available.store(false);
    m_online.store(false);
    m_opened.store(false);
    m_grabbing.store(false);
    m_frameCount.store(0);
    m_frameRate.store(0);
    m_bandwidth.store(0);
    m_statistic14.store(0);
    m_statistic15.store(0);
    m_statistic16.store(0);
    m_errorCount.store(0);
    m_statistic18.store(0);
    m_statistic19.store(0);
    m_statistic20.store(0);
    m_statistic21.store(0);
    m_displayRate.store(0);
    m_auxiliaryNodeMap.store(nullptr);
    m_featureNodeMap.store(nullptr);
    std::lock_guard<std::mutex> lock(m_textMutex);
    m_text41 = "---";
    m_text40 = "-";
    m_text42 = "-, -";
    m_text43 = "- - -";
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
    Utilities::LogInfo(name, "Open camera success, cost time = " + std::to_string(NowMs() - start) + "ms",
                       notifyHost);
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
    const bool grabThreadExisted = m_grabThread != nullptr;
    const bool deliveryThreadExisted = m_deliveryThread != nullptr;
    m_watchdogStop.store(true);
    m_grabExit.store(true);
    m_grabPause.store(false);
    m_deliverExit.store(true);
    m_deliverPause.store(false);
    m_grabActive.store(true);
    m_deliverActive.store(true);
    // The threads are detached: dropping their objects does not wait for them.
    if (m_watchdogThread) {
        WakeWatchdog();
        m_watchdogThread.reset();
    }
    if (m_grabThread) {
        WakeGrabThread();
        m_grabThread.reset();
    }
    if (m_deliveryThread) {
        WakeDeliveryThread();
        m_deliveryThread.reset();
    }
    // The watchdog clears its running flag as its last access to this camera (a lost camera's
    // watchdog may be the very thread that is closing it here).
    WaitUntil([this] { return !m_watchdogRunning.load(); });
    if (grabThreadExisted)
        WaitUntil([this] { return m_grabExited.load(); });
    if (deliveryThreadExisted)
        WaitUntil([this] { return m_deliverExited.load(); });
    ReleaseQueuedImages();
}

void Camera::WakeWatchdog()
{
    { std::lock_guard<std::mutex> lock(m_watchdogWaitMutex); }
    m_watchdogCondition.notify_all();
}

void Camera::WakeGrabThread()
{
    // Taking the mutex orders the flag store before the waiter's predicate test.
    { std::lock_guard<std::mutex> lock(m_grabWaitMutex); }
    m_grabCondition.notify_all();
}

void Camera::WakeDeliveryThread()
{
    { std::lock_guard<std::mutex> lock(m_imageListMutex); }
    m_deliveryCondition.notify_all();
}

void Camera::SetCamera(ZYLGENICAM::ICamera* camera)
{
    m_camera.store(camera);
}

ZYLGENICAM::ICamera* Camera::GetSdkCamera() const
{
    return m_camera.load();
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
    if (m_nodeAccessRefused.load())
        return -11;
    if (!m_watchdogRunning.load() || !m_opened.load() || !m_camera.load())
        return -12;
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
    // A node that is not readable right now (-4) is routine while polling.
    if (result != 0 && result != -4)
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

// ---- Information fields ----

std::string* Camera::TextField(CAM_INFO info)
{
    switch (info) {
    case ViewerBiz3::CAM_NAME:
        return &m_name;
    case ViewerBiz3::CAM_LIST_KEY:
        return &m_listKey;
    case ViewerBiz3::CAM_MAC:
        return &m_macAddress;
    case ViewerBiz3::CAM_IP:
        return &m_ipAddress;
    case ViewerBiz3::CAM_MASK:
        return &m_subnetMask;
    case ViewerBiz3::CAM_GATEWAY:
        return &m_gateway;
    case ViewerBiz3::CAM_MODEL_NAME:
    case ViewerBiz3::CAM_MODEL_NAME_ALT:
        return &m_modelName;
    case ViewerBiz3::CAM_DEVICE_TEXT:
    case ViewerBiz3::CAM_DEVICE_TEXT_ALT:
        return &m_deviceText;
    case ViewerBiz3::CAM_DEVICE_TEXT2:
        return &m_deviceText2;
    case ViewerBiz3::CAM_SERIAL:
    case ViewerBiz3::CAM_SERIAL_ALT:
        return &m_serialNumber;
    case ViewerBiz3::CAM_HOST_TEXT40:
        return &m_text40;
    case ViewerBiz3::CAM_HOST_TEXT41:
        return &m_text41;
    case ViewerBiz3::CAM_HOST_TEXT42:
        return &m_text42;
    case ViewerBiz3::CAM_HOST_TEXT43:
        return &m_text43;
    case ViewerBiz3::CAM_IMAGE_BITS:
        return &m_imageBits;
    case ViewerBiz3::CAM_SAMPLING_RATIO:
        return &m_samplingRatio;
    case ViewerBiz3::CAM_CONTOUR_SPACER:
        return &m_contourSpacer;
    case ViewerBiz3::CAM_REAL_COLOR:
        return &m_realColor;
    case ViewerBiz3::CAM_PROFILE_TEXT54:
        return &m_text54;
    case ViewerBiz3::CAM_Z_UP_SIZE:
        return &m_zUpSize;
    case ViewerBiz3::CAM_Z_DOWN_SIZE:
        return &m_zDownSize;
    case ViewerBiz3::CAM_ACQ_LIMIT:
        return &m_acquisitionLimit;
    case ViewerBiz3::CAM_OFFSET_Y:
        return &m_offsetY;
    case ViewerBiz3::CAM_TEXT59:
        return &m_text59;
    case ViewerBiz3::CAM_TEXT60:
        return &m_text60;
    case ViewerBiz3::CAM_TEXT61:
        return &m_text61;
    case ViewerBiz3::CAM_CL_PROTOCOL:
        return &m_text65;
    case ViewerBiz3::CAM_CL_SERIAL_PORT:
        return &m_text66;
    case ViewerBiz3::CAM_TEXT67:
        return &m_text67;
    case ViewerBiz3::CAM_TEXT68:
        return &m_text68;
    default:
        return nullptr;
    }
}

std::string Camera::GetInfo(CAM_INFO info)
{
    switch (info) {
    case ViewerBiz3::CAM_AVAILABLE:
        return AsDecimal(m_available.load());
    case ViewerBiz3::CAM_ONLINE:
        return AsDecimal(m_online.load());
    case ViewerBiz3::CAM_OPENED:
        return AsDecimal(m_opened.load());
    case ViewerBiz3::CAM_FLAG3:
        return AsDecimal(m_flag3.load());
    case ViewerBiz3::CAM_KIND:
        return AsDecimal(uint64_t{m_kind.load()});
    case ViewerBiz3::CAM_GRABBING:
        return AsDecimal(m_grabbing.load());
    case ViewerBiz3::CAM_FRAME_COUNT:
        return AsDecimal(m_frameCount.load());
    case ViewerBiz3::CAM_FRAME_RATE:
        return WithThreeDecimals(m_frameRate.load());
    case ViewerBiz3::CAM_BANDWIDTH:
        return WithThreeDecimals(m_bandwidth.load());
    case ViewerBiz3::CAM_STAT14:
        return AsDecimal(m_statistic14.load());
    case ViewerBiz3::CAM_STAT15:
        return AsDecimal(uint64_t{m_statistic15.load()});
    case ViewerBiz3::CAM_STAT16:
        return AsDecimal(uint64_t{m_statistic16.load()});
    case ViewerBiz3::CAM_ERROR_COUNT:
        return AsDecimal(m_errorCount.load());
    case ViewerBiz3::CAM_STAT18:
        return AsDecimal(uint64_t{m_statistic18.load()});
    case ViewerBiz3::CAM_STAT19:
        return AsDecimal(m_statistic19.load());
    case ViewerBiz3::CAM_STAT20:
        return AsDecimal(m_statistic20.load());
    case ViewerBiz3::CAM_STAT21:
        return AsDecimal(m_statistic21.load());
    case ViewerBiz3::CAM_DISPLAY_RATE:
        return WithThreeDecimals(m_displayRate.load());
    case ViewerBiz3::CAM_SAME_SEGMENT:
        return AsDecimal(uint64_t{m_sameSegment.load()});
    default:
        break;
    }
    std::lock_guard<std::mutex> lock(m_textMutex);
    const std::string* field = TextField(info);
    return field ? *field : std::string();
}

bool Camera::IsHostSettable(CAM_INFO info)
{
    return (info >= ViewerBiz3::CAM_HOST_TEXT40 && info <= ViewerBiz3::CAM_HOST_TEXT43) ||
           (info >= ViewerBiz3::CAM_IMAGE_BITS && info <= ViewerBiz3::CAM_ACQ_LIMIT) ||
           info == ViewerBiz3::CAM_TEXT67 || info == ViewerBiz3::CAM_TEXT68;
}

int Camera::SetInfo(CAM_INFO info, const std::string& value)
{
    if (!IsHostSettable(info))
        return -1;
    SetText(info, value);
    if (CameraHost* host = GetCameraHost())
        host->NotifyAcqStatisticUpdate(GetName(), true);
    return 0;
}

int Camera::SetText(CAM_INFO info, const std::string& text)
{
    // Name and list key have their own setters; the alternative numbers only read.
    if (info == ViewerBiz3::CAM_NAME || info == ViewerBiz3::CAM_LIST_KEY || info == ViewerBiz3::CAM_MODEL_NAME_ALT ||
        info == ViewerBiz3::CAM_DEVICE_TEXT_ALT || info == ViewerBiz3::CAM_SERIAL_ALT)
        return -1;
    std::lock_guard<std::mutex> lock(m_textMutex);
    std::string* field = TextField(info);
    if (!field)
        return -1;
    *field = text;
    return 0;
}

std::string Camera::GetName() const
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    return m_name;
}

void Camera::SetName(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    m_name = name;
}

std::string Camera::GetKey() const
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    return m_key;
}

void Camera::SetKey(const std::string& key)
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    m_key = key;
}

std::string Camera::GetListKey() const
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    return m_listKey;
}

void Camera::SetListKey(const std::string& listKey)
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    m_listKey = listKey;
}

std::string Camera::GetHostInterfaceAddress() const
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    return m_hostInterfaceAddress;
}

void Camera::SetHostInterfaceAddress(const std::string& address)
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    m_hostInterfaceAddress = address;
}

std::string Camera::GetVirtualSuffix() const
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    return m_virtualSuffix;
}

void Camera::SetVirtualSuffix(const std::string& suffix)
{
    std::lock_guard<std::mutex> lock(m_textMutex);
    m_virtualSuffix = suffix;
}

uint16_t Camera::GetKind() const
{
    return m_kind.load();
}

void Camera::SetKind(uint16_t kind)
{
    m_kind.store(kind);
}

bool Camera::IsAvailable() const
{
    return m_available.load();
}

void Camera::SetAvailable(bool available)
{
    m_available.store(available);
}

bool Camera::IsMarkedOnline() const
{
    return m_online.load();
}

void Camera::SetOnline(bool online)
{
    m_online.store(online);
}

bool Camera::IsOpened() const
{
    return m_opened.load();
}

void Camera::SetOpened(bool opened)
{
    m_opened.store(opened);
}

bool Camera::IsFlag3() const
{
    return m_flag3.load();
}

void Camera::SetFlag3(bool flag3)
{
    m_flag3.store(flag3);
}

bool Camera::IsGrabbing() const
{
    return m_grabbing.load();
}

void Camera::SetGrabbing(bool grabbing)
{
    m_grabbing.store(grabbing);
}

bool Camera::IsSameSegment() const
{
    return m_sameSegment.load() != 0;
}

void Camera::SetSameSegment(bool sameSegment)
{
    m_sameSegment.store(sameSegment ? 1 : 0);
}

Card* Camera::GetCard() const
{
    return m_card.load();
}

void Camera::SetCard(Card* card)
{
    m_card.store(card);
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
    int64_t result = ZYLGENICAM::SetCameraIP(info->GetSerialNumber(), ip.c_str(), mask.c_str(), gateway.c_str(),
                                             persistent);
    // The IP library reports a configuration that needs no reboot as -4.
    if (result == -4)
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

// ---- Watchdog ----

void Camera::StartWatchdogIfAbsent()
{
    if (m_watchdogThread)
        return;
    m_watchdogStop.store(false);
    m_watchdogRunning.store(true);
    m_watchdogThread = std::make_unique<std::thread>([this] { OnlineFunction(); });
    m_watchdogThread->detach();
}

void Camera::StopWatchdog()
{
    m_watchdogStop.store(true);
    WakeWatchdog();
    WaitUntil([this] { return !m_watchdogRunning.load(); });
    m_watchdogThread.reset();
}

bool Camera::IsWatchdogRunning() const
{
    return m_watchdogRunning.load();
}

void Camera::SleepUnlessWatchdogStopped()
{
    std::unique_lock<std::mutex> lock(m_watchdogWaitMutex);
    m_watchdogCondition.wait_for(lock, watchdogPeriod, [this] { return m_watchdogStop.load(); });
}

void Camera::OnlineFunction()
{
    m_watchdogRunning.store(true);
    for (;;) {
        if (m_watchdogStop.load()) {
            m_watchdogRunning.store(false);
            return;
        }
        if (!IsOnline())
            break;
        SleepUnlessWatchdogStopped();
    }
    if (m_watchdogStop.load()) {
        m_watchdogRunning.store(false);
        return;
    }
    HandleLoss();
}

bool Camera::LockStateUnlessExiting(std::unique_lock<std::mutex>& lock, const std::atomic<bool>& exitFlag)
{
    // Closing holds the state mutex while it waits for this thread: give up once told to exit.
    while (!lock.try_lock()) {
        if (exitFlag.load())
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void Camera::HandleLoss()
{
    Utilities::LogError(GetName(), "Camera is lost.", notifyHost);
    std::unique_lock<std::mutex> lostLock(onlineMutex);
    m_online.store(false);
    m_available.store(false);
    if (m_grabbing.load()) {
        std::unique_lock<std::mutex> stateLock(m_stateMutex, std::defer_lock);
        if (LockStateUnlessExiting(stateLock, m_watchdogStop))
            StopGrabLocked(false);
    }
    ReleaseLostDevice();
    // Everything needed after RemoveOpenedCamera is read now: the host deletes a lost GigE or
    // USB camera inside that call, and clearing the running flag lets closing go on.
    const std::string key = GetKey();
    const bool cameraLink = m_kind.load() == cameraLinkKind;
    CameraHost* host = GetCameraHost();
    if (host)
        host->NotifyDeviceListUpdate(GetListKey(), key);
    m_watchdogRunning.store(false);
    if (host)
        host->RemoveOpenedCamera(key);
    if (cameraLink)
        BecomeVirtualPlaceholder();
}

// The device is let go at once rather than when this camera is deleted: should it answer again,
// discovery lists it and the host may open it anew, which the old handle, still holding control
// and a stream channel, would disturb.
void Camera::ReleaseLostDevice()
{
    ZYLGENICAM::ICamera* sdkCamera = m_camera.load();
    if (!sdkCamera)
        return;
    std::unique_lock<std::shared_mutex> nodeLock(m_nodeAccessMutex);
    m_featureNodeMap.store(nullptr);
    m_auxiliaryNodeMap.store(nullptr);
    sdkCamera->Close();
    m_lostDeviceReleased.store(true);
}

void Camera::BecomeVirtualPlaceholder()
{
    std::string key;
    {
        std::lock_guard<std::mutex> lock(m_textMutex);
        m_name = virtualCameraPrefix + m_virtualSuffix;
        for (std::string* text : {&m_modelName, &m_deviceText, &m_deviceText2, &m_serialNumber, &m_text61, &m_text65,
                                  &m_text66, &m_unreadText})
            *text = placeholderText;
        m_text59 = "1";
        m_text60 = "0";
        m_key = m_name;
        key = m_key;
    }
    m_opened.store(false);
    m_available.store(false);
    if (Card* card = m_card.load())
        card->SetText(Card::CAMERA_NAME_TEXT, key);
    if (CameraHost* host = GetCameraHost()) {
        host->AddCLCamera(this);
        host->NotifyDeviceListUpdate();
    }
}
