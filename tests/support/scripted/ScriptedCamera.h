// A camera handle on a scripted device; open and grabbing state are per handle,
// the frame script and the counters belong to the device.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "ZylSdk.h"
#include "support/scripted/ScriptedCameraInfo.h"
#include "support/scripted/ScriptedSdk.h"

namespace Scripted {

class ScriptedCamera final : public ZYLGENICAM::ICamera {
public:
    explicit ScriptedCamera(std::shared_ptr<ScriptedDevice> device)
        : m_device(std::move(device)), m_info(m_device, ScriptedCameraInfo::Owner::Camera)
    {
        m_device->Count(&DeviceCounters::camerasCreated);
    }

    int Open(int) override { return Usable(__func__) ? m_device->Open(m_state) : ZYLGENICAM::SDK_ERROR; }
    int Close() override { return Usable(__func__) ? m_device->Close(m_state) : ZYLGENICAM::SDK_ERROR; }
    bool IsOpen() override { return Usable(__func__) && m_state.open; }
    bool IsConnected() override { return Usable(__func__) && !m_device->IsLost(); }
    bool IsGrabbing() override { return Usable(__func__) && m_state.grabbing; }
    ZYLGENICAM::ICameraInfo* GetDeviceInfo() override { return Usable(__func__) ? &m_info : nullptr; }
    ZYLGENICAM::IModule* GetModule0() override { return Usable(__func__) ? m_device->ModuleAt(0) : nullptr; }
    ZYLGENICAM::IModule* GetModule1() override { return Usable(__func__) ? m_device->ModuleAt(1) : nullptr; }
    ZYLGENICAM::IModule* GetModule2() override { return Usable(__func__) ? m_device->ModuleAt(2) : nullptr; }
    ZYLGENICAM::IModule* GetModule3() override { return Usable(__func__) ? m_device->ModuleAt(3) : nullptr; }
    ZYLGENICAM::IModule* GetModule4() override { return Usable(__func__) ? m_device->ModuleAt(4) : nullptr; }
    int StartGrabbing(int, uint64_t frameLimit) override
    {
        return Usable(__func__) ? m_device->StartGrabbing(m_state, frameLimit) : ZYLGENICAM::SDK_ERROR;
    }
    int StopGrabbing() override { return Usable(__func__) ? m_device->StopGrabbing(m_state) : ZYLGENICAM::SDK_ERROR; }
    int GetImage(ZYLGENICAM::IImage*& image, uint64_t timeoutMs) override
    {
        image = nullptr;
        return Usable(__func__) ? m_device->GetImage(m_state, image, timeoutMs) : ZYLGENICAM::SDK_ERROR;
    }
    int SetCLProtocol(const char* protocol, const char* serialPort) override
    {
        return Usable(__func__) ? m_device->SetCLProtocol(protocol, serialPort) : ZYLGENICAM::SDK_ERROR;
    }
    void Destroy() override
    {
        if (m_destroyed.exchange(true)) {
            Misuse("second ICamera::Destroy of a handle");
        } else {
            m_device->Destroyed(m_state);
        }
    }

private:
    void Misuse(const std::string& what) const
    {
        ScriptedSdk::Instance().ReportMisuse(what + " on " + m_device->SerialNumber());
    }
    // Reports a call on a destroyed handle; true when the call may go on.
    bool Usable(const char* operation) const
    {
        if (!m_destroyed.load()) {
            return true;
        }
        Misuse("ICamera::" + std::string(operation) + " on a destroyed handle");
        return false;
    }

    const std::shared_ptr<ScriptedDevice> m_device;
    ScriptedDevice::HandleState m_state;
    ScriptedCameraInfo m_info;
    std::atomic<bool> m_destroyed{false};
};

} // namespace Scripted
