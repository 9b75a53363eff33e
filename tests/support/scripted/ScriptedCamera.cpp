#include "support/scripted/ScriptedCamera.h"

#include <string>

#include "support/scripted/ScriptedCameraInfo.h"
#include "support/scripted/ScriptedModule.h"
#include "support/scripted/ScriptedSdk.h"

namespace Scripted {

ScriptedCamera::ScriptedCamera(std::shared_ptr<ScriptedDevice> device)
    : m_device(std::move(device)),
      m_info(std::make_unique<ScriptedCameraInfo>(m_device, ScriptedCameraInfo::Owner::Camera))
{
    m_device->CountCameraCreated(m_state);
}

ScriptedCamera::~ScriptedCamera() = default;

int ScriptedCamera::Open(int accessMode)
{
    return Usable("ICamera::Open") ? m_device->Open(m_state, accessMode) : ZYLGENICAM::SDK_ERROR;
}

int ScriptedCamera::Close()
{
    return Usable("ICamera::Close") ? m_device->Close(m_state) : ZYLGENICAM::SDK_ERROR;
}

bool ScriptedCamera::IsOpen()
{
    return Usable("ICamera::IsOpen") && m_device->IsOpen(m_state);
}

bool ScriptedCamera::IsConnected()
{
    return Usable("ICamera::IsConnected") && !m_device->IsLost();
}

bool ScriptedCamera::IsGrabbing()
{
    return Usable("ICamera::IsGrabbing") && m_device->IsGrabbing(m_state);
}

ZYLGENICAM::ICameraInfo* ScriptedCamera::GetDeviceInfo()
{
    return Usable("ICamera::GetDeviceInfo") ? m_info.get() : nullptr;
}

ZYLGENICAM::IModule* ScriptedCamera::GetModule0()
{
    return ModuleOrNull(0, "ICamera::GetModule0");
}

ZYLGENICAM::IModule* ScriptedCamera::GetModule1()
{
    return ModuleOrNull(1, "ICamera::GetModule1");
}

ZYLGENICAM::IModule* ScriptedCamera::GetModule2()
{
    return ModuleOrNull(2, "ICamera::GetModule2");
}

ZYLGENICAM::IModule* ScriptedCamera::GetModule3()
{
    return ModuleOrNull(3, "ICamera::GetModule3");
}

ZYLGENICAM::IModule* ScriptedCamera::GetModule4()
{
    return ModuleOrNull(4, "ICamera::GetModule4");
}

int ScriptedCamera::StartGrabbing(int mode, uint64_t frameLimit)
{
    return Usable("ICamera::StartGrabbing") ? m_device->StartGrabbing(m_state, mode, frameLimit)
                                            : ZYLGENICAM::SDK_ERROR;
}

int ScriptedCamera::StopGrabbing()
{
    return Usable("ICamera::StopGrabbing") ? m_device->StopGrabbing(m_state) : ZYLGENICAM::SDK_ERROR;
}

int ScriptedCamera::GetImage(ZYLGENICAM::IImage*& image, uint64_t timeoutMs)
{
    image = nullptr;
    return Usable("ICamera::GetImage") ? m_device->GetImage(m_state, image, timeoutMs) : ZYLGENICAM::SDK_ERROR;
}

int ScriptedCamera::SetCLProtocol(const char* protocol, const char* serialPort)
{
    return Usable("ICamera::SetCLProtocol") ? m_device->SetCLProtocol(protocol, serialPort) : ZYLGENICAM::SDK_ERROR;
}

void ScriptedCamera::Destroy()
{
    if (m_destroyed.exchange(true)) {
        ScriptedSdk::Instance().ReportMisuse("second ICamera::Destroy of a handle on " + m_device->SerialNumber());
        return;
    }
    m_device->CountCameraDestroyed(m_state);
}

bool ScriptedCamera::Usable(const char* operation) const
{
    if (m_destroyed.load()) {
        ScriptedSdk::Instance().ReportMisuse(std::string(operation) + " on a destroyed handle of " +
                                             m_device->SerialNumber());
        return false;
    }
    return true;
}

ZYLGENICAM::IModule* ScriptedCamera::ModuleOrNull(int module, const char* operation)
{
    return Usable(operation) ? m_device->Module(module) : nullptr;
}

} // namespace Scripted
