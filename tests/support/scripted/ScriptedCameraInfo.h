// A device record: a snapshot of a scripted device's identity taken when the record was made.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "ZylSdk.h"
#include "support/scripted/ScriptedSdk.h"

namespace Scripted {

class ScriptedCameraInfo final : public ZYLGENICAM::ICameraInfo {
public:
    // Caller: a discovery record, which the library destroys; Camera: what a handle's GetDeviceInfo returns.
    enum class Owner { Caller, Camera };

    ScriptedCameraInfo(std::shared_ptr<ScriptedDevice> device, Owner owner)
        : m_device(std::move(device)), m_owner(owner), m_identity(m_device->Identity())
    {
        if (m_owner == Owner::Caller) {
            m_device->Count(&DeviceCounters::recordsCreated);
        }
    }

    int GetTLType() override { return Usable(__func__) ? m_identity.tlType : ZYLGENICAM::SDK_ERROR; }
    int GetAccessStatus() override { return Usable(__func__) ? m_identity.accessStatus : 0; }
    const char* GetSerialNumber() override { return Text(__func__, m_identity.serialNumber); }
    const char* GetModelName() override { return Text(__func__, m_identity.modelName); }
    const char* GetUserDefinedName() override { return Text(__func__, m_identity.userDefinedName); }
    const char* GetDeviceText() override { return Text(__func__, m_identity.deviceText); }
    const char* GetDeviceText2() override { return Text(__func__, m_identity.deviceText2); }
    const char* GetGigEInfo(int item) override { return Item(__func__, ZYLGENICAM::TL_GIGE, item); }
    const char* GetCLInfo(int item) override { return Item(__func__, ZYLGENICAM::TL_CAMERALINK, item); }
    void Destroy() override
    {
        if (m_owner == Owner::Camera) {
            Misuse("ICameraInfo::Destroy on the record a camera handle owns");
        } else if (m_destroyed.exchange(true)) {
            Misuse("second ICameraInfo::Destroy of a record");
        } else {
            m_device->Count(&DeviceCounters::recordsDestroyed);
        }
    }

    const std::shared_ptr<ScriptedDevice>& Device() const { return m_device; }
    bool IsDestroyed() const { return m_destroyed.load(); }

private:
    void Misuse(const std::string& what) const
    {
        ScriptedSdk::Instance().ReportMisuse(what + " (" + m_identity.serialNumber + ")");
    }
    // Reports a call on a destroyed record; true when the call may go on.
    bool Usable(const char* operation) const
    {
        if (!m_destroyed.load()) {
            return true;
        }
        Misuse("ICameraInfo::" + std::string(operation) + " on a destroyed record");
        return false;
    }
    const char* Text(const char* operation, const std::string& text) const
    {
        return Usable(operation) ? text.c_str() : "";
    }
    // An item of GetGigEInfo or GetCLInfo: "" unless the record is of that transport and knows the item.
    const char* Item(const char* operation, int tlType, int item) const
    {
        using namespace ZYLGENICAM;
        static const std::map<std::pair<int, int>, std::string DeviceIdentity::*> items = {
            {{TL_GIGE, GIGE_IP}, &DeviceIdentity::ip},
            {{TL_GIGE, GIGE_MAC}, &DeviceIdentity::mac},
            {{TL_GIGE, GIGE_MASK}, &DeviceIdentity::mask},
            {{TL_GIGE, GIGE_GATEWAY}, &DeviceIdentity::gateway},
            {{TL_GIGE, GIGE_HOST_INTERFACE_IP}, &DeviceIdentity::hostInterfaceIp},
            {{TL_CAMERALINK, CL_CARD_KEY}, &DeviceIdentity::clCardKey},
            {{TL_CAMERALINK, CL_PROTOCOL}, &DeviceIdentity::clProtocol},
            {{TL_CAMERALINK, CL_SERIAL_PORT}, &DeviceIdentity::clSerialPort},
        };
        auto found = items.find({tlType, item});
        if (!Usable(operation) || m_identity.tlType != tlType || found == items.end()) {
            return "";
        }
        return (m_identity.*found->second).c_str();
    }

    const std::shared_ptr<ScriptedDevice> m_device;
    const Owner m_owner;
    const DeviceIdentity m_identity;
    std::atomic<bool> m_destroyed{false};
};

} // namespace Scripted
