// How the camera SDK tests get a camera: from a discovery, by serial number.
#pragma once

#include <cstdint>
#include <string>

#include "ZylSdk.h"

namespace SdkCameraFeatures {

// The camera of that serial number among the records of a discovery on the transport types, or
// null when it is not listed. Every record is destroyed, as the host does.
inline ZYLGENICAM::ICamera* CreateBySerial(uint64_t tlTypes, const std::string& serial)
{
    ZYLGENICAM::ICamera* created = nullptr;
    for (ZYLGENICAM::ICameraInfo* info : ZYLGENICAM::DiscoveryByTLType(tlTypes)) {
        if (created == nullptr && serial == info->GetSerialNumber())
            created = ZYLGENICAM::CreateCamera(info);
        info->Destroy();
    }
    return created;
}

} // namespace SdkCameraFeatures
