#pragma once

#include "genapi/ArvNode.h"
#include "genapi/IRegister.h"

namespace GenApi_3_4 {

// A node over device memory: the typed interface of ValueNode (ArvNode for a plain Register, ArvIntegerNode,
// ArvFloatNode or ArvStringNode for IntReg, MaskedIntReg, StructEntry, FloatReg, StringReg) plus the register's
// raw bytes, as GenApi offers both on these nodes.
template <class ValueNode>
class ArvRegisterNode final : public ValueNode, public virtual IRegister {
public:
    using ValueNode::ValueNode;

    void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) override;
    void Get(uint8_t* pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) override;
    int64_t GetLength(bool Verify = false) override;
    int64_t GetAddress(bool Verify = false) override;

private:
    // Throws unless the buffer exists and its length is the register's.
    void CheckBuffer(const void* buffer, int64_t length, const char* operation);
};

} // namespace GenApi_3_4
