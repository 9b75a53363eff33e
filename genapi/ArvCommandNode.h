#pragma once

#include "genapi/ArvNode.h"
#include "genapi/ICommand.h"

namespace GenApi_3_4 {

class ArvCommandNode final : public ArvNode, public virtual ICommand {
public:
    using ArvNode::ArvNode;

    void Execute(bool Verify = true) override;
    bool IsDone(bool Verify = true) override;

protected:
    EAccessMode OwnAccessMode() const override;

private:
    // The property element (Value or pValue / CommandValue or pCommandValue) as an evaluated integer.
    int64_t ReadProperty(const char* literalName, const char* pointerName) const;
};

} // namespace GenApi_3_4
