#pragma once

#include "genapi/ArvNode.h"
#include "genapi/IFloat.h"

namespace GenApi_3_4 {

// Float, FloatReg, Converter and SwissKnife nodes.
class ArvFloatNode : public ArvNode, public virtual IFloat {
public:
    using ArvNode::ArvNode;

    void SetValue(double Value, bool Verify = true) override;
    double GetValue(bool Verify = false, bool IgnoreCache = false) override;
    double GetMin() override;
    double GetMax() override;
    // The increment of the first node along pValue that declares one, as for Min and Max. For floats it is
    // advice to the user interface only: values off the increment grid are neither refused nor reported.
    bool HasInc() override;
    // Throws RuntimeException when there is no increment.
    double GetInc() override;
    ERepresentation GetRepresentation() override;
    GenICam_3_4::gcstring GetUnit() const override;

    GenICam_3_4::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
    void FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify = true) override;

private:
    // Throws OutOfRangeException unless min <= value <= max.
    void CheckRange(double value, const char* operation);
};

} // namespace GenApi_3_4
