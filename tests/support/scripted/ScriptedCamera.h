// A camera handle on a scripted device; open and grabbing state are per handle,
// the frame script and the counters belong to the device.
#pragma once

#include <atomic>
#include <memory>

#include "ZylSdk.h"
#include "support/scripted/ScriptedDevice.h"

namespace Scripted {

class ScriptedCameraInfo;

class ScriptedCamera final : public ZYLGENICAM::ICamera {
public:
    explicit ScriptedCamera(std::shared_ptr<ScriptedDevice> device);
    ~ScriptedCamera();
    ScriptedCamera(const ScriptedCamera&) = delete;
    ScriptedCamera& operator=(const ScriptedCamera&) = delete;

    int Open(int accessMode) override;
    int Close() override;
    bool IsOpen() override;
    bool IsConnected() override;
    bool IsGrabbing() override;
    ZYLGENICAM::ICameraInfo* GetDeviceInfo() override;
    ZYLGENICAM::IModule* GetModule0() override;
    ZYLGENICAM::IModule* GetModule1() override;
    ZYLGENICAM::IModule* GetModule2() override;
    ZYLGENICAM::IModule* GetModule3() override;
    ZYLGENICAM::IModule* GetModule4() override;
    int StartGrabbing(int mode, uint64_t frameLimit) override;
    int StopGrabbing() override;
    int GetImage(ZYLGENICAM::IImage*& image, uint64_t timeoutMs) override;
    int SetCLProtocol(const char* protocol, const char* serialPort) override;
    void Destroy() override;

private:
    // Reports a call on a destroyed handle; true when the call may go on.
    bool Usable(const char* operation) const;
    ZYLGENICAM::IModule* ModuleOrNull(int module, const char* operation);

    std::shared_ptr<ScriptedDevice> m_device;
    ScriptedDevice::HandleState m_state;
    std::unique_ptr<ScriptedCameraInfo> m_info;
    std::atomic<bool> m_destroyed{false};
};

} // namespace Scripted
