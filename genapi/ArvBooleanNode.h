#pragma once

#include "genapi/ArvNode.h"
#include "genapi/IBoolean.h"

namespace GenApi_3_4 {

class ArvBooleanNode final : public ArvNode, public virtual IBoolean {
public:
    using ArvNode::ArvNode;

    void SetValue(bool Value, bool Verify = true) override;
    bool GetValue(bool Verify = false, bool IgnoreCache = false) const override;

    // "1" / "0"; FromString also takes "true" / "false" in any case.
    GenICam_3_4::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
    void FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify = true) override;
};

} // namespace GenApi_3_4
