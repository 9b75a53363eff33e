#pragma once

#include <cstdint>

#include "genapi/IValue.h"

namespace GenApi_3_4 {

// A block of device memory read and written as raw bytes (Register, IntReg, MaskedIntReg, FloatReg, StringReg
// and the entries of a StructReg): what a viewer's raw register view works with.
struct IRegister : virtual public IValue {
    // Length must be the register's length. Verify: check that the node is writable.
    virtual void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) = 0;
    // Length must be the register's length; readability is checked whatever Verify says.
    virtual void Get(uint8_t* pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) = 0;
    // In bytes.
    virtual int64_t GetLength(bool Verify = false) = 0;
    virtual int64_t GetAddress(bool Verify = false) = 0;
};

} // namespace GenApi_3_4
