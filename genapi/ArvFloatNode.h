#pragma once

#include "genapi/ArvNode.h"
#include "genapi/IFloat.h"

namespace GenApi_3_4 {

// Float, FloatReg, Converter and SwissKnife nodes.
class ArvFloatNode final : public ArvNode, public virtual IFloat {
public:
    using ArvNode::ArvNode;

    void SetValue(double Value, bool Verify = true) override;
    double GetValue(bool Verify = false, bool IgnoreCache = false) override;
    double GetMin() override;
    double GetMax() override;
    bool HasInc() override;
    double GetInc() override;
    ERepresentation GetRepresentation() override;
    GenICam_3_4::gcstring GetUnit() const override;

    GenICam_3_4::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
    void FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify = true) override;

private:
    void CheckRange(double value, const char* operation);
};

} // namespace GenApi_3_4
