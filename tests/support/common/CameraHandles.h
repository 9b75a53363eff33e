// Camera handles straight from the SDK (scripted or Aravis), the way discovery would get them.
#pragma once

#include <cstdint>
#include <string>

#include "ZylSdk.h"

// A new handle for the device with this serial number among those of the transport mask; null when
// no such device is found. Every discovery record is destroyed before returning.
ZYLGENICAM::ICamera* CreateCameraHandle(uint64_t transportMask, const std::string& serialNumber);
