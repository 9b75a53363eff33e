#pragma once

#include <vector>

#include "genapi/GCString.h"

namespace GenApi_3_4 {

// The interface a node presents first; the numbering follows GenApi.
enum EInterfaceType {
    intfIValue = 0,
    intfIBase = 1,
    intfIInteger = 2,
    intfIBoolean = 3,
    intfICommand = 4,
    intfIFloat = 5,
    intfIString = 6,
    intfIRegister = 7,
    intfICategory = 8,
    intfIEnumeration = 9,
    intfIEnumEntry = 10,
    intfIPort = 11
};

// NI: the device lacks the feature, NA: it exists but is unavailable now, WO/RO/RW: write-only,
// read-only, read-write.
enum EAccessMode { NI = 0, NA = 1, WO = 2, RO = 3, RW = 4, _UndefinedAccesMode = 5, _CycleDetectAccesMode = 6 };

enum EVisibility { Beginner = 0, Expert = 1, Guru = 2, Invisible = 3, _UndefinedVisibility = 99 };

enum ERepresentation {
    Linear = 0,
    Logarithmic = 1,
    Boolean = 2,
    PureNumber = 3,
    HexNumber = 4,
    IPV4Address = 5,
    MACAddress = 6,
    _UndefinedRepresentation = 7
};

struct INode;
struct IValue;

using node_vector = std::vector<INode*>;
using value_vector = std::vector<IValue*>;
using NodeList_t = node_vector;
using FeatureList_t = value_vector;
using StringList_t = GenICam_3_4::gcstring_vector;

} // namespace GenApi_3_4
