#include "node/NodeAccess.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace Utilities {

namespace {

using GenApi_3_4::INode;
using GenApi_3_4::INodeMap;

const char* const kNodeMapNull = "Nodemap is NULL";
const char* const kNodeMissing = "Node does not exist";
const char* const kNodeUnreadable = "Node unreadable";
const char* const kNodeUnwritable = "Node unwritable";
const char* const kUnsupportedType = "Unsupported type";
const char* const kAvailabilityFailed = "Get pIsAvailable failed!";

// The named node; null with NODE_MAP_MISSING or NODE_MISSING in failure and the message set.
INode* LookUpNode(INodeMap* nodeMap, const std::string& name, std::string& message, int& failure)
{
    if (nodeMap == nullptr) {
        message = kNodeMapNull;
        failure = NODE_MAP_MISSING;
        return nullptr;
    }
    INode* node = nodeMap->GetNode(name);
    if (node == nullptr) {
        message = kNodeMissing;
        failure = NODE_MISSING;
    }
    return node;
}

// Runs the part of a node operation that follows a successful lookup: GenICam exceptions become
// NODE_GENICAM_ERROR with their description, anything else NODE_UNEXPECTED_ERROR.
template <class Operation>
int Guarded(std::string& message, Operation operation)
{
    try {
        return operation();
    } catch (const GenICam_3_4::GenericException& exception) {
        message = exception.GetDescription();
        return NODE_GENICAM_ERROR;
    } catch (...) {
        return NODE_UNEXPECTED_ERROR;
    }
}

// The node's pIsAvailable test: 0 when it passes or does not apply, NODE_UNAVAILABLE when it fails.
int CheckAvailability(INodeMap* nodeMap, INode* node, std::string& message)
{
    GenICam_3_4::gcstring availabilityName;
    GenICam_3_4::gcstring attribute;
    if (!node->GetProperty("pIsAvailable", availabilityName, attribute)) {
        return 0;
    }
    INode* availabilityNode = nodeMap->GetNode(availabilityName);
    if (availabilityNode == nullptr) {
        message = kAvailabilityFailed;
        return NODE_UNAVAILABLE;
    }
    if (availabilityNode->GetPrincipalInterfaceType() != GenApi_3_4::intfIInteger) {
        return 0;
    }
    GenApi_3_4::CIntegerPtr availability(availabilityNode);
    try {
        if (!availability.IsValid() || availability->GetValue(true, true) == 0) {
            message = kAvailabilityFailed;
            return NODE_UNAVAILABLE;
        }
    } catch (const GenICam_3_4::GenericException& exception) {
        message = exception.GetDescription();
        return NODE_UNAVAILABLE;
    }
    return 0;
}

// Reads the node through pointer type Ptr when it is readable, passing the typed interface to format.
template <class Ptr, class Format>
int ReadTyped(INode* node, std::string& value, std::string& message, Format format)
{
    Ptr pointer(node);
    if (!GenApi_3_4::IsReadable(pointer)) {
        message = kNodeUnreadable;
        return NODE_NOT_ACCESSIBLE;
    }
    value = format(*pointer);
    return 0;
}

// Writes through pointer type Ptr when it is writable; unwritableMessage null leaves the message untouched.
template <class Ptr, class Write>
int WriteTyped(INode* node, std::string& message, const char* unwritableMessage, Write write)
{
    Ptr pointer(node);
    if (!GenApi_3_4::IsWritable(pointer)) {
        if (unwritableMessage != nullptr) {
            message = unwritableMessage;
        }
        return NODE_NOT_ACCESSIBLE;
    }
    write(*pointer);
    return 0;
}

} // namespace

int GetNodeValue(INodeMap* nodeMap, std::string name, std::string& value, std::string& message)
{
    int lookupFailure = 0;
    INode* node = LookUpNode(nodeMap, name, message, lookupFailure);
    if (node == nullptr) {
        return lookupFailure;
    }
    return Guarded(message, [&]() {
        const int availability = CheckAvailability(nodeMap, node, message);
        if (availability != 0) {
            return availability;
        }
        switch (node->GetPrincipalInterfaceType()) {
        case GenApi_3_4::intfIInteger:
            return ReadTyped<GenApi_3_4::CIntegerPtr>(node, value, message, [](GenApi_3_4::IInteger& integer) {
                return std::to_string(integer.GetValue(true, true));
            });
        case GenApi_3_4::intfIBoolean:
            return ReadTyped<GenApi_3_4::CBooleanPtr>(node, value, message, [](GenApi_3_4::IBoolean& boolean) {
                return std::string(boolean.GetValue(true, true) ? "True" : "False");
            });
        case GenApi_3_4::intfIFloat:
            return ReadTyped<GenApi_3_4::CFloatPtr>(node, value, message, [](GenApi_3_4::IFloat& floating) {
                return ToStringWithPrecision(floating.GetValue(true, true), 6);
            });
        case GenApi_3_4::intfIString:
            // Strings are read from the cache without verification, unlike the other types.
            return ReadTyped<GenApi_3_4::CStringPtr>(node, value, message, [](GenApi_3_4::IString& text) {
                return std::string(text.ToString(false, false));
            });
        case GenApi_3_4::intfIEnumeration:
            return ReadTyped<GenApi_3_4::CEnumerationPtr>(
                node, value, message,
                [](GenApi_3_4::IEnumeration& enumeration) { return std::string(enumeration.ToString(true, true)); });
        default:
            message = kUnsupportedType;
            return NODE_TYPE_UNSUPPORTED;
        }
    });
}

int SetNodeValue(INodeMap* nodeMap, std::string name, std::string value, std::string& message)
{
    int lookupFailure = 0;
    INode* node = LookUpNode(nodeMap, name, message, lookupFailure);
    if (node == nullptr) {
        return lookupFailure;
    }
    return Guarded(message, [&]() {
        switch (node->GetPrincipalInterfaceType()) {
        case GenApi_3_4::intfIInteger:
            return WriteTyped<GenApi_3_4::CIntegerPtr>(
                node, message, kNodeUnwritable, [&](GenApi_3_4::IInteger& integer) {
                    integer.SetValue(static_cast<int64_t>(std::atoi(value.c_str())), true);
                });
        case GenApi_3_4::intfIBoolean:
            return WriteTyped<GenApi_3_4::CBooleanPtr>(
                node, message, kNodeUnwritable,
                [&](GenApi_3_4::IBoolean& boolean) { boolean.SetValue(std::atoi(value.c_str()) != 0, true); });
        case GenApi_3_4::intfICommand:
            return WriteTyped<GenApi_3_4::CCommandPtr>(node, message, kNodeUnwritable,
                                                       [](GenApi_3_4::ICommand& command) { command.Execute(true); });
        case GenApi_3_4::intfIFloat:
            return WriteTyped<GenApi_3_4::CFloatPtr>(node, message, kNodeUnwritable, [&](GenApi_3_4::IFloat& floating) {
                floating.SetValue(std::atof(value.c_str()), true);
            });
        case GenApi_3_4::intfIString:
            return WriteTyped<GenApi_3_4::CStringPtr>(node, message, kNodeUnwritable, [&](GenApi_3_4::IString& text) {
                text.FromString(GenICam_3_4::gcstring(value), true);
            });
        case GenApi_3_4::intfIEnumeration:
            // An unwritable enumeration reports NODE_NOT_ACCESSIBLE without a message; callers depend on that.
            return WriteTyped<GenApi_3_4::CEnumerationPtr>(
                node, message, nullptr, [&](GenApi_3_4::IEnumeration& enumeration) {
                    enumeration.FromString(GenICam_3_4::gcstring(value), true);
                });
        default:
            message = kUnsupportedType;
            return NODE_TYPE_UNSUPPORTED;
        }
    });
}

int GetIntNodeInfo(INodeMap* nodeMap, std::string name, std::string& value, std::string& min, std::string& max,
                   std::string& inc, std::string& message)
{
    int lookupFailure = 0;
    INode* node = LookUpNode(nodeMap, name, message, lookupFailure);
    if (node == nullptr) {
        return lookupFailure;
    }
    return Guarded(message, [&]() {
        if (node->GetPrincipalInterfaceType() != GenApi_3_4::intfIInteger) {
            message = kUnsupportedType;
            return NODE_TYPE_UNSUPPORTED;
        }
        GenApi_3_4::CIntegerPtr integer(node);
        if (!GenApi_3_4::IsReadable(integer)) {
            message = kNodeUnreadable;
            return NODE_NOT_ACCESSIBLE;
        }
        value = std::to_string(integer->GetValue(true, true));
        min = std::to_string(integer->GetMin());
        max = std::to_string(integer->GetMax());
        inc = std::to_string(integer->GetInc());
        return 0;
    });
}

std::string ToStringWithPrecision(double value, int precision)
{
    const std::string format = "%." + std::to_string(precision) + "f";
    char buffer[24];
    std::snprintf(buffer, sizeof buffer, format.c_str(), value);
    return buffer;
}

} // namespace Utilities
