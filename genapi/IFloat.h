#pragma once

#include "genapi/IValue.h"
#include "genapi/Types.h"

namespace GenApi_3_4 {

struct IFloat : virtual public IValue {
    // Verify: check access, minimum, maximum (and the increment when there is one), throwing on violation.
    virtual void SetValue(double Value, bool Verify = true) = 0;
    virtual double GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual double GetMin() = 0;
    virtual double GetMax() = 0;
    virtual bool HasInc() = 0;
    virtual double GetInc() = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual GenICam_3_4::gcstring GetUnit() const = 0;

    IFloat& operator=(double Value) {
        SetValue(Value);
        return *this;
    }
    double operator()() { return GetValue(); }
    double operator*() { return GetValue(); }
};

} // namespace GenApi_3_4
