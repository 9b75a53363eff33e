#include "support/common/CameraHandles.h"

ZYLGENICAM::ICamera* CreateCameraHandle(uint64_t transportMask, const std::string& serialNumber)
{
    ZYLGENICAM::ICamera* handle = nullptr;
    for (ZYLGENICAM::ICameraInfo* info : ZYLGENICAM::DiscoveryByTLType(transportMask)) {
        if (!handle && serialNumber == info->GetSerialNumber())
            handle = ZYLGENICAM::CreateCamera(info);
        info->Destroy();
    }
    return handle;
}
