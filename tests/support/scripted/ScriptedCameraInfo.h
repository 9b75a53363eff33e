// A device record: a snapshot of a scripted device's identity taken when the record was made.
#pragma once

#include <atomic>
#include <memory>

#include "ZylSdk.h"
#include "support/scripted/ScriptedTypes.h"

namespace Scripted {

class ScriptedDevice;

class ScriptedCameraInfo final : public ZYLGENICAM::ICameraInfo {
public:
    enum class Owner {
        Caller, // a discovery record: the library destroys it
        Camera, // a camera handle's GetDeviceInfo: the camera keeps it
    };

    ScriptedCameraInfo(std::shared_ptr<ScriptedDevice> device, Owner owner);
    ~ScriptedCameraInfo();
    ScriptedCameraInfo(const ScriptedCameraInfo&) = delete;
    ScriptedCameraInfo& operator=(const ScriptedCameraInfo&) = delete;

    int GetTLType() override;
    int GetAccessStatus() override;
    const char* GetSerialNumber() override;
    const char* GetModelName() override;
    const char* GetUserDefinedName() override;
    const char* GetDeviceText() override;
    const char* GetDeviceText2() override;
    const char* GetGigEInfo(int item) override;
    const char* GetCLInfo(int item) override;
    void Destroy() override;

    const std::shared_ptr<ScriptedDevice>& Device() const { return m_device; }
    bool IsDestroyed() const { return m_destroyed.load(); }

private:
    // Reports a call on a destroyed record; true when the call may go on.
    bool Usable(const char* operation) const;

    std::shared_ptr<ScriptedDevice> m_device;
    Owner m_owner;
    DeviceIdentity m_identity;
    std::atomic<bool> m_destroyed{false};
};

} // namespace Scripted
