#include "support/scripted/ScriptedCameraInfo.h"

#include <string>

#include "support/scripted/ScriptedDevice.h"
#include "support/scripted/ScriptedSdk.h"

namespace Scripted {

ScriptedCameraInfo::ScriptedCameraInfo(std::shared_ptr<ScriptedDevice> device, Owner owner)
    : m_device(std::move(device)), m_owner(owner), m_identity(m_device->Identity())
{
    if (m_owner == Owner::Caller) {
        m_device->CountRecordCreated();
    }
}

ScriptedCameraInfo::~ScriptedCameraInfo() = default;

int ScriptedCameraInfo::GetTLType()
{
    return Usable("ICameraInfo::GetTLType") ? m_identity.tlType : ZYLGENICAM::SDK_ERROR;
}

int ScriptedCameraInfo::GetAccessStatus()
{
    return Usable("ICameraInfo::GetAccessStatus") ? m_identity.accessStatus : 0;
}

const char* ScriptedCameraInfo::GetSerialNumber()
{
    return Usable("ICameraInfo::GetSerialNumber") ? m_identity.serialNumber.c_str() : "";
}

const char* ScriptedCameraInfo::GetModelName()
{
    return Usable("ICameraInfo::GetModelName") ? m_identity.modelName.c_str() : "";
}

const char* ScriptedCameraInfo::GetUserDefinedName()
{
    return Usable("ICameraInfo::GetUserDefinedName") ? m_identity.userDefinedName.c_str() : "";
}

const char* ScriptedCameraInfo::GetDeviceText()
{
    return Usable("ICameraInfo::GetDeviceText") ? m_identity.deviceText.c_str() : "";
}

const char* ScriptedCameraInfo::GetDeviceText2()
{
    return Usable("ICameraInfo::GetDeviceText2") ? m_identity.deviceText2.c_str() : "";
}

const char* ScriptedCameraInfo::GetGigEInfo(int item)
{
    if (!Usable("ICameraInfo::GetGigEInfo") || m_identity.tlType != ZYLGENICAM::TL_GIGE) {
        return "";
    }
    switch (item) {
    case ZYLGENICAM::GIGE_IP:
        return m_identity.ip.c_str();
    case ZYLGENICAM::GIGE_MAC:
        return m_identity.mac.c_str();
    case ZYLGENICAM::GIGE_MASK:
        return m_identity.mask.c_str();
    case ZYLGENICAM::GIGE_GATEWAY:
        return m_identity.gateway.c_str();
    case ZYLGENICAM::GIGE_HOST_INTERFACE_IP:
        return m_identity.hostInterfaceIp.c_str();
    default:
        return "";
    }
}

const char* ScriptedCameraInfo::GetCLInfo(int item)
{
    if (!Usable("ICameraInfo::GetCLInfo") || m_identity.tlType != ZYLGENICAM::TL_CAMERALINK) {
        return "";
    }
    switch (item) {
    case ZYLGENICAM::CL_CARD_KEY:
        return m_identity.clCardKey.c_str();
    case ZYLGENICAM::CL_PROTOCOL:
        return m_identity.clProtocol.c_str();
    case ZYLGENICAM::CL_SERIAL_PORT:
        return m_identity.clSerialPort.c_str();
    default:
        return "";
    }
}

void ScriptedCameraInfo::Destroy()
{
    if (m_owner == Owner::Camera) {
        ScriptedSdk::Instance().ReportMisuse("ICameraInfo::Destroy on the record a camera handle owns (" +
                                             m_identity.serialNumber + ")");
        return;
    }
    if (m_destroyed.exchange(true)) {
        ScriptedSdk::Instance().ReportMisuse("second ICameraInfo::Destroy of a record of " + m_identity.serialNumber);
        return;
    }
    m_device->CountRecordDestroyed();
}

bool ScriptedCameraInfo::Usable(const char* operation) const
{
    if (m_destroyed.load()) {
        ScriptedSdk::Instance().ReportMisuse(std::string(operation) + " on a destroyed record of " +
                                             m_identity.serialNumber);
        return false;
    }
    return true;
}

} // namespace Scripted
