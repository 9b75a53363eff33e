#pragma once

#include "genapi/ArvNode.h"
#include "genapi/IEnumEntry.h"

namespace GenApi_3_4 {

// One entry of an enumeration, named "EnumEntry_<enumeration>_<symbolic>" as in GenApi.
class ArvEnumEntryNode final : public ArvNode, public virtual IEnumEntry {
public:
    using ArvNode::ArvNode;

    int64_t GetValue() override;
    GenICam_3_4::gcstring GetSymbolic() const override;
    double GetNumericValue() override;
    bool IsSelfClearing() override;

    GenICam_3_4::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;

protected:
    EAccessMode OwnAccessMode() const override { return RO; }
};

} // namespace GenApi_3_4
