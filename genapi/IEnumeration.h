#pragma once

#include <cstdint>

#include "genapi/IEnumEntry.h"
#include "genapi/IValue.h"
#include "genapi/Types.h"

namespace GenApi_3_4 {

struct IEnumeration : virtual public IValue {
    // Symbolic names of the entries that are currently available, in document order.
    virtual void GetSymbolics(StringList_t& Symbolics) = 0;
    // Every entry node, available or not, in document order.
    virtual void GetEntries(NodeList_t& Entries) = 0;
    virtual void SetIntValue(int64_t Value, bool Verify = true) = 0;
    virtual int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) = 0;
    // Null when no entry has that name / value.
    virtual IEnumEntry* GetEntryByName(const GenICam_3_4::gcstring& Symbolic) = 0;
    virtual IEnumEntry* GetEntry(int64_t IntValue) = 0;
    virtual IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) = 0;

    IEnumeration& operator=(const GenICam_3_4::gcstring& Symbolic)
    {
        FromString(Symbolic);
        return *this;
    }
};

} // namespace GenApi_3_4
