#pragma once

#include <cstdint>

#include "genapi/IValue.h"
#include "genapi/Types.h"

namespace GenApi_3_4 {

// ToString writes the value in its representation: "0x1f" for HexNumber, "192.168.0.2" for IPV4Address,
// "00:0c:29:aa:bb:cc" for MACAddress, decimal otherwise. FromString reads those forms, decimal ("010" is ten)
// and "0x" hexadecimal.
struct IInteger : virtual public IValue {
    // Verify: check access, minimum, maximum and increment, throwing on violation.
    virtual void SetValue(int64_t Value, bool Verify = true) = 0;
    virtual int64_t GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual int64_t GetMin() = 0;
    virtual int64_t GetMax() = 0;
    virtual int64_t GetInc() = 0;
    // As declared by the node or the nodes its value comes from; PureNumber when none declares one.
    virtual ERepresentation GetRepresentation() = 0;
    virtual GenICam_3_4::gcstring GetUnit() const = 0;

    IInteger& operator=(int64_t Value)
    {
        SetValue(Value);
        return *this;
    }
    int64_t operator()() { return GetValue(); }
    int64_t operator*() { return GetValue(); }
};

} // namespace GenApi_3_4
