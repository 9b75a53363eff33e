#pragma once

#include <vector>

#include "genapi/ArvNode.h"
#include "genapi/IEnumeration.h"

namespace GenApi_3_4 {

class ArvEnumEntryNode;

class ArvEnumerationNode final : public ArvNode, public virtual IEnumeration {
public:
    using ArvNode::ArvNode;

    void GetSymbolics(StringList_t& Symbolics) override;
    void GetEntries(NodeList_t& Entries) override;
    void SetIntValue(int64_t Value, bool Verify = true) override;
    int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) override;
    IEnumEntry* GetEntryByName(const GenICam_3_4::gcstring& Symbolic) override;
    IEnumEntry* GetEntry(int64_t IntValue) override;
    IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) override;

    // The symbolic name of the current entry / the entry to select by its symbolic name.
    GenICam_3_4::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
    void FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify = true) override;

private:
    // In document order; ArvGc's own entry list is reversed.
    std::vector<ArvEnumEntryNode*> EntryNodes() const;
};

} // namespace GenApi_3_4
