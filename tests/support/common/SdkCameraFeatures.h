// What the camera SDK tests do to a camera: create it from a discovery by serial number, and
// read or write its features through the node map as text.
#pragma once

#include <cstdint>
#include <string>

#include "ZylSdk.h"
#include "genapi/GenApi.h"

namespace SdkCameraFeatures {

// The camera of that serial number among the records of a discovery on the transport types,
// or null when it is not listed. Every record is destroyed, as the host does.
ZYLGENICAM::ICamera* CreateBySerial(uint64_t tlTypes, const std::string& serial);

GenApi::INodeMap* Features(ZYLGENICAM::ICamera* camera);
std::string Read(ZYLGENICAM::ICamera* camera, const char* name);
void Write(ZYLGENICAM::ICamera* camera, const char* name, const std::string& text);

} // namespace SdkCameraFeatures
