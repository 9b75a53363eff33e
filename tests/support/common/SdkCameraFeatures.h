// What the camera SDK tests do to a camera: create it from a discovery by serial number, and read
// or write its features through the node map as text.
#pragma once

#include <cstdint>
#include <string>

#include "ZylSdk.h"
#include "genapi/GenApi.h"

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

inline GenApi::INodeMap* Features(ZYLGENICAM::ICamera* camera)
{
    ZYLGENICAM::IModule* module = camera->GetModule3();
    return module != nullptr ? module->GetNodeMap() : nullptr;
}

inline std::string Read(ZYLGENICAM::ICamera* camera, const char* name)
{
    return GenApi::CValuePtr(Features(camera)->GetNode(name))->ToString().c_str();
}

inline void Write(ZYLGENICAM::ICamera* camera, const char* name, const std::string& text)
{
    GenApi::CValuePtr(Features(camera)->GetNode(name))->FromString(text.c_str());
}

} // namespace SdkCameraFeatures
