#pragma once

#include <string>

#include "genapi/GenApi.h"

// Typed reading and writing of GenApi nodes by name, everything as text; failures are codes plus a message.
namespace Utilities {

int GetNodeValue(GenApi_3_4::INodeMap* nodeMap, std::string name, std::string& value, std::string& message);
int SetNodeValue(GenApi_3_4::INodeMap* nodeMap, std::string name, std::string value, std::string& message);
int GetIntNodeInfo(GenApi_3_4::INodeMap* nodeMap, std::string name, std::string& value, std::string& min,
                   std::string& max, std::string& inc, std::string& message);
std::string ToStringWithPrecision(double value, int precision);

} // namespace Utilities
