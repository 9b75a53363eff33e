#pragma once

#include "genapi/ArvNode.h"
#include "genapi/IInteger.h"

namespace GenApi_3_4 {

// Integer, IntReg, MaskedIntReg, IntConverter, IntSwissKnife and StructEntry nodes.
class ArvIntegerNode : public ArvNode, public virtual IInteger {
public:
    using ArvNode::ArvNode;

    void SetValue(int64_t Value, bool Verify = true) override;
    int64_t GetValue(bool Verify = false, bool IgnoreCache = false) override;
    int64_t GetMin() override;
    int64_t GetMax() override;
    int64_t GetInc() override;
    ERepresentation GetRepresentation() override;
    GenICam_3_4::gcstring GetUnit() const override;

    // In the form of the node's representation (see IntegerText.h).
    GenICam_3_4::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
    void FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify = true) override;

private:
    // Throws OutOfRangeException unless min <= value <= max and value lies on the increment grid from min.
    void CheckRange(int64_t value, const char* operation);
};

} // namespace GenApi_3_4
