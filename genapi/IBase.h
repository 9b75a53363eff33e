#pragma once

#include "genapi/Types.h"

namespace GenApi_3_4 {

// Root of every node interface: what may be done with the node right now.
struct IBase {
    virtual EAccessMode GetAccessMode() const = 0;

protected:
    virtual ~IBase() = default;
};

} // namespace GenApi_3_4
