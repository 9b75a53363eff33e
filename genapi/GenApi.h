#pragma once

// The GenApi-compatible node-map interfaces, smart pointers and GenICam exceptions.

#include "genapi/GCException.h"
#include "genapi/GCString.h"
#include "genapi/IBase.h"
#include "genapi/IBoolean.h"
#include "genapi/ICategory.h"
#include "genapi/ICommand.h"
#include "genapi/IEnumEntry.h"
#include "genapi/IEnumeration.h"
#include "genapi/IFloat.h"
#include "genapi/IInteger.h"
#include "genapi/INode.h"
#include "genapi/INodeMap.h"
#include "genapi/IRegister.h"
#include "genapi/IString.h"
#include "genapi/IValue.h"
#include "genapi/Pointer.h"
#include "genapi/Types.h"

namespace GenICam = GenICam_3_4;
namespace GenApi = GenApi_3_4;
