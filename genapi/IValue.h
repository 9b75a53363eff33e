#pragma once

#include "genapi/GCString.h"
#include "genapi/IBase.h"

namespace GenApi_3_4 {

struct INode;

// A node whose value can be read and written as text.
struct IValue : virtual public IBase {
    virtual INode* GetNode() = 0;
    virtual GenICam_3_4::gcstring ToString(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual void FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify = true) = 0;
};

} // namespace GenApi_3_4
