// Scripted devices as the device-manager tests need them (header only: only
// the program linked with the scripted SDK includes it).
#pragma once

#include <string>

#include "support/scripted/ScriptedSdk.h"

namespace DeviceScripted {

// A GigE area camera reached through the test namespace's adapter (169.254.10.1/16).
inline Scripted::DeviceDescription GigECamera(const std::string& serial, const std::string& userName,
                                              const std::string& ip, const std::string& mac)
{
    Scripted::DeviceDescription description = Scripted::AreaCamera(serial, userName, ZYLGENICAM::TL_GIGE);
    description.identity.ip = ip;
    description.identity.mac = mac;
    description.identity.mask = "255.255.0.0";
    description.identity.hostInterfaceIp = "169.254.10.1";
    return description;
}

inline Scripted::ScriptedDevice& AddGigECamera(const std::string& serial, const std::string& userName,
                                               const std::string& ip, const std::string& mac)
{
    return Scripted::ScriptedSdk::Instance().AddDevice(GigECamera(serial, userName, ip, mac));
}

inline Scripted::ScriptedDevice& AddUsbCamera(const std::string& serial, const std::string& userName)
{
    return Scripted::ScriptedSdk::Instance().AddDevice(Scripted::AreaCamera(serial, userName, ZYLGENICAM::TL_USB));
}

} // namespace DeviceScripted
