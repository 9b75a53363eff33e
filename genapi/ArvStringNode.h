#pragma once

#include "genapi/ArvNode.h"
#include "genapi/IString.h"

namespace GenApi_3_4 {

// String and StringReg nodes.
class ArvStringNode : public ArvNode, public virtual IString {
public:
    using ArvNode::ArvNode;

    void SetValue(const GenICam_3_4::gcstring& Value, bool Verify = true) override;
    GenICam_3_4::gcstring GetValue(bool Verify = false, bool IgnoreCache = false) override;
    int64_t GetMaxLength() override;

    GenICam_3_4::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
    void FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify = true) override;
};

} // namespace GenApi_3_4
