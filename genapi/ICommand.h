#pragma once

#include "genapi/IValue.h"

namespace GenApi_3_4 {

struct ICommand : virtual public IValue {
    virtual void Execute(bool Verify = true) = 0;
    // True once the device has finished the last execution.
    virtual bool IsDone(bool Verify = true) = 0;

    void operator()() { Execute(); }
};

} // namespace GenApi_3_4
