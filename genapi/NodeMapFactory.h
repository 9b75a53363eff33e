#pragma once

#include <arv.h>

#include <memory>
#include <string>

#include "genapi/GenApi.h"

namespace GenApi_3_4 {

// A standalone node map parsed from a GenICam XML document; nodes with <Value> work without a device.
// Throws GenICam_3_4::RuntimeException when the document cannot be parsed.
std::unique_ptr<INodeMap> CreateNodeMapFromXml(const std::string& genicamXml, const std::string& deviceName);

// The node map of an Aravis device (its ArvGc); keeps a reference on the device while it lives.
// Throws GenICam_3_4::RuntimeException when the device has no GenICam description.
std::unique_ptr<INodeMap> CreateNodeMapForDevice(ArvDevice* device);

} // namespace GenApi_3_4
