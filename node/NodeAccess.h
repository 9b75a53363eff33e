#pragma once

#include <string>

#include "genapi/GenApi.h"

// Typed reading and writing of GenApi nodes by name, everything as text; failures are codes plus a message.
namespace Utilities {

// Failure codes of the functions below; 0 is success.
constexpr int NODE_MAP_MISSING = -1;
constexpr int NODE_MISSING = -4;
constexpr int NODE_NOT_ACCESSIBLE = -5;
constexpr int NODE_TYPE_UNSUPPORTED = -6;
// A GenICam exception; its description is the message.
constexpr int NODE_GENICAM_ERROR = -7;
// Any other exception; the message stays untouched.
constexpr int NODE_UNEXPECTED_ERROR = -8;
// The node's pIsAvailable test failed.
constexpr int NODE_UNAVAILABLE = -9;

int GetNodeValue(GenApi_3_4::INodeMap* nodeMap, std::string name, std::string& value, std::string& message);
int SetNodeValue(GenApi_3_4::INodeMap* nodeMap, std::string name, std::string value, std::string& message);
int GetIntNodeInfo(GenApi_3_4::INodeMap* nodeMap, std::string name, std::string& value, std::string& min,
                   std::string& max, std::string& inc, std::string& message);
std::string ToStringWithPrecision(double value, int precision);

} // namespace Utilities
