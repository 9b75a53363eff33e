#pragma once

#include <cstdint>

#include "genapi/IValue.h"

namespace GenApi_3_4 {

// One possible value of an enumeration: a symbolic name and its integer.
struct IEnumEntry : virtual public IValue {
    virtual int64_t GetValue() = 0;
    virtual GenICam_3_4::gcstring GetSymbolic() const = 0;
    virtual double GetNumericValue() = 0;
    virtual bool IsSelfClearing() = 0;
};

} // namespace GenApi_3_4
