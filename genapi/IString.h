#pragma once

#include <cstdint>

#include "genapi/IValue.h"

namespace GenApi_3_4 {

struct IString : virtual public IValue {
    virtual void SetValue(const GenICam_3_4::gcstring& Value, bool Verify = true) = 0;
    virtual GenICam_3_4::gcstring GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual int64_t GetMaxLength() = 0;

    IString& operator=(const GenICam_3_4::gcstring& Value)
    {
        SetValue(Value);
        return *this;
    }
    GenICam_3_4::gcstring operator()() { return GetValue(); }
};

} // namespace GenApi_3_4
