#pragma once

#include "genapi/IValue.h"
#include "genapi/Types.h"

namespace GenApi_3_4 {

struct IFloat : virtual public IValue {
    // Verify: check access, minimum and maximum, throwing on violation. A float's increment is never enforced.
    virtual void SetValue(double Value, bool Verify = true) = 0;
    virtual double GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual double GetMin() = 0;
    virtual double GetMax() = 0;
    virtual bool HasInc() = 0;
    // Throws RuntimeException when HasInc() is false.
    virtual double GetInc() = 0;
    // As declared by the node or the nodes its value comes from; PureNumber when none declares one.
    virtual ERepresentation GetRepresentation() = 0;
    virtual GenICam_3_4::gcstring GetUnit() const = 0;

    IFloat& operator=(double Value)
    {
        SetValue(Value);
        return *this;
    }
    double operator()() { return GetValue(); }
    double operator*() { return GetValue(); }
};

} // namespace GenApi_3_4
