#include "camera/CLCamera.h"

#include "camera/CameraHost.h"
#include "camera/FrameGrabberCard.h"
#include "log/Log.h"
#include "node/NodeAccess.h"

namespace {

GenApi_3_4::INodeMap* NodeMapOf(ZYLGENICAM::IModule* module)
{
    return module == nullptr ? nullptr : module->GetNodeMap();
}

} // namespace

CLCamera::CLCamera(ZYLGENICAM::ICamera* camera) : Camera(camera) {}

CLCamera::~CLCamera()
{
    ShutDownForDestruction();
}

bool CLCamera::IsPlaceholder() const
{
    return GetName().find("Virtual camera") != std::string::npos;
}

void CLCamera::LogOpenFailure(int result)
{
    Utilities::LogError(GetName(), "Failed to open the camera, errorcode = " + std::to_string(result), 1);
}

int CLCamera::OpenCamera(int accessMode)
{
    ZYLGENICAM::ICamera* handle = GetSdkCamera();
    if (handle != nullptr && handle->IsOpen()) {
        Utilities::LogInfo(GetName(), "Failed to open the camera. The camera is already open.", 1);
        return -1;
    }
    uint64_t startMs = NowMs();
    int result = handle == nullptr ? -1 : handle->Open(accessMode);
    if (result != 0) {
        LogOpenFailure(result);
        return result;
    }
    if (GetListKey() == SERIAL_ONLY_LIST_KEY)
        return OpenSerialOnly(startMs);
    return OpenCardSide(handle, startMs);
}

int CLCamera::OpenSerialOnly(uint64_t startMs)
{
    int result = SetCLParam(GetInfo(ViewerBiz3::CAM_CL_PROTOCOL), GetInfo(ViewerBiz3::CAM_CL_SERIAL_PORT));
    if (result != 0) {
        LogOpenFailure(result);
        return result;
    }
    SetOpened(true);
    SetAvailable(true);
    SetOnline(true);
    StartWatchdogIfAbsent();
    Utilities::LogInfo(GetName(), "Open camera success, cost time = " + std::to_string(NowMs() - startMs) + "ms", 1);
    return 0;
}

int CLCamera::OpenCardSide(ZYLGENICAM::ICamera* handle, uint64_t startMs)
{
    GenApi_3_4::INodeMap* cardNodeMap = NodeMapOf(handle->GetModule2());
    SetAuxiliaryNodeMap(cardNodeMap);
    if (cardNodeMap == nullptr) {
        handle->Close();
        Utilities::LogError(GetName(), "Failed to open the card, card node map is NULL", 1);
        return -2;
    }
    Utilities::LogInfo(GetListKey(), "Open card success, cost time = " + std::to_string(NowMs() - startMs) + "ms", 1);
    return 0;
}

bool CLCamera::IsOnline()
{
    return true;
}

void CLCamera::BecomeBound(bool bound)
{
    SetOpened(bound);
    SetOnline(bound);
    SetAvailable(bound);
}

int CLCamera::SetCLParam(std::string protocol, std::string serialPort)
{
    ZYLGENICAM::ICamera* handle = GetSdkCamera();
    if (handle == nullptr)
        return -1;
    if (IsPlaceholder()) {
        BecomeBound(!protocol.empty());
        return 0;
    }
    int result;
    if (protocol.empty() && serialPort.empty()) {
        if (IsMarkedOnline())
            StopWatchdog();
        SetFeatureNodeMap(nullptr);
        result = handle->SetCLProtocol(nullptr, nullptr);
    } else {
        std::string storedProtocol = GetInfo(ViewerBiz3::CAM_CL_PROTOCOL);
        std::string storedPort = GetInfo(ViewerBiz3::CAM_CL_SERIAL_PORT);
        // A stored pair wins over the arguments.
        if (!storedProtocol.empty() && !storedPort.empty())
            result = handle->SetCLProtocol(storedProtocol.c_str(), storedPort.c_str());
        else
            result = handle->SetCLProtocol(protocol.c_str(), serialPort.c_str());
    }
    if (result != 0)
        return result;
    BecomeBound(!protocol.empty());
    m_deviceReset.store(false);
    if (IsOpened()) {
        SetFeatureNodeMap(NodeMapOf(handle->GetModule3()));
        StartWatchdogIfAbsent();
    }
    return 0;
}

int CLCamera::CloseCLCamera(bool notify)
{
    SetOpened(false);
    SetAvailable(false);
    if (IsGrabbing())
        StopGrab(true);
    if (notify) {
        if (CameraHost* host = GetCameraHost())
            host->NotifyDeviceListUpdate(GetListKey(), GetKey());
    }
    return SetCLParam("", "");
}

bool CLCamera::cardIsOpen()
{
    ZYLGENICAM::ICamera* handle = GetSdkCamera();
    if (handle == nullptr)
        return true;
    FrameGrabberCard* card = GetCard();
    return card != nullptr ? card->IsOpened() : handle->IsOpen();
}

GenApi_3_4::INodeMap* CLCamera::SelectedNodeMap(bool toCamera) const
{
    return toCamera ? GetFeatureNodeMap() : GetAuxiliaryNodeMap();
}

int CLCamera::GetNodeValue(std::string nodeName, std::string& value, bool toCamera)
{
    if (IsPlaceholder() && toCamera)
        return -1;
    if (!IsOpened() || !IsWatchdogRunning())
        return -2;
    std::string message;
    return Utilities::GetNodeValue(SelectedNodeMap(toCamera), nodeName, value, message);
}

int CLCamera::SetNodeValue(std::string nodeName, std::string value, bool toCamera)
{
    if (!IsOpened() || !IsWatchdogRunning())
        return -2;
    std::string message;
    int result = Utilities::SetNodeValue(SelectedNodeMap(toCamera), nodeName, value, message);
    if (result != 0)
        Utilities::LogError(GetName(), "Failed to SetNodeValue. nodeName = " + nodeName + ", message = " + message, 1);
    else if (nodeName == "DeviceReset")
        m_deviceReset.store(true);
    return result;
}
