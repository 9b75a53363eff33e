// Module 0 of a GigE Vision camera on Aravis: the device's transport features (current and
// persistent IP configuration, MAC address, link speed, packet size, heartbeat timeout, control
// access), described by a GenICam document of ours over the device's bootstrap registers and read
// through the same GenApi layer as the camera's own features.
#pragma once

#include <arv.h>

#include <memory>
#include <string>

#include "genapi/GenApi.h"

namespace ZYLGENICAM {
namespace GigeTransportModule {

const std::string& Xml();
// The node map over the open device's bootstrap registers (keeps a reference on the device).
std::unique_ptr<GenApi_3_4::INodeMap> CreateNodeMap(ArvDevice* device);

} // namespace GigeTransportModule
} // namespace ZYLGENICAM
