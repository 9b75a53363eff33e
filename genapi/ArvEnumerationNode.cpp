#include "genapi/ArvEnumerationNode.h"

#include <arv.h>

#include <mutex>

#include "genapi/ArvEnumEntryNode.h"
#include "genapi/ArvNodeMap.h"
#include "genapi/GCException.h"
#include "genapi/Pointer.h"

namespace GenApi_3_4 {

std::vector<ArvEnumEntryNode*> ArvEnumerationNode::EntryNodes() const
{
    std::vector<ArvEnumEntryNode*> entries;
    for (ArvDomNode* child = arv_dom_node_get_first_child(ARV_DOM_NODE(FeatureNode())); child != nullptr;
         child = arv_dom_node_get_next_sibling(child)) {
        if (ARV_IS_GC_ENUM_ENTRY(child)) {
            entries.push_back(dynamic_cast<ArvEnumEntryNode*>(NodeMap().NodeFor(ARV_GC_FEATURE_NODE(child))));
        }
    }
    return entries;
}

void ArvEnumerationNode::GetSymbolics(StringList_t& Symbolics)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    Symbolics.clear();
    for (ArvEnumEntryNode* entry : EntryNodes()) {
        if (IsAvailable(entry)) {
            Symbolics.push_back(entry->GetSymbolic());
        }
    }
}

void ArvEnumerationNode::GetEntries(NodeList_t& Entries)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    Entries.clear();
    for (ArvEnumEntryNode* entry : EntryNodes()) {
        Entries.push_back(entry);
    }
}

void ArvEnumerationNode::SetIntValue(int64_t Value, bool Verify)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    if (Verify) {
        RequireWritable("SetIntValue");
        IEnumEntry* entry = GetEntry(Value);
        if (entry == nullptr) {
            Throw<GenICam_3_4::OutOfRangeException>("Value = " + std::to_string(Value) +
                                                        " is not the value of any entry.",
                                                    "OutOfRangeException", "SetIntValue");
        }
        if (!IsAvailable(entry)) {
            Throw<GenICam_3_4::AccessException>("Entry '" + entry->GetSymbolic().str() + "' is not available.",
                                                "AccessException", "SetIntValue");
        }
    }
    CallArv("SetIntValue",
            [&](GError** e) { arv_gc_enumeration_set_int_value(ARV_GC_ENUMERATION(FeatureNode()), Value, e); });
}

int64_t ArvEnumerationNode::GetIntValue(bool Verify, bool IgnoreCache)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    RequireReadable("GetIntValue");
    const int64_t value = ReadArv("GetIntValue", IgnoreCache, [&](GError** e) {
        return arv_gc_enumeration_get_int_value(ARV_GC_ENUMERATION(FeatureNode()), e);
    });
    if (Verify && GetEntry(value) == nullptr) {
        Throw<GenICam_3_4::OutOfRangeException>("Value = " + std::to_string(value) + " is not the value of any entry.",
                                                "OutOfRangeException", "GetIntValue");
    }
    return value;
}

IEnumEntry* ArvEnumerationNode::GetEntryByName(const GenICam_3_4::gcstring& Symbolic)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    for (ArvEnumEntryNode* entry : EntryNodes()) {
        if (entry->GetSymbolic() == Symbolic) {
            return entry;
        }
    }
    return nullptr;
}

IEnumEntry* ArvEnumerationNode::GetEntry(int64_t IntValue)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    for (ArvEnumEntryNode* entry : EntryNodes()) {
        if (entry->GetValue() == IntValue) {
            return entry;
        }
    }
    return nullptr;
}

IEnumEntry* ArvEnumerationNode::GetCurrentEntry(bool Verify, bool IgnoreCache)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return GetEntry(GetIntValue(Verify, IgnoreCache));
}

GenICam_3_4::gcstring ArvEnumerationNode::ToString(bool Verify, bool IgnoreCache)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    const int64_t value = GetIntValue(Verify, IgnoreCache);
    IEnumEntry* entry = GetEntry(value);
    if (entry == nullptr) {
        Throw<GenICam_3_4::InvalidArgumentException>("Value = " + std::to_string(value) +
                                                         " is not the value of any entry.",
                                                     "InvalidArgumentException", "ToString");
    }
    return entry->GetSymbolic();
}

void ArvEnumerationNode::FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    if (Verify) {
        RequireWritable("FromString");
    }
    IEnumEntry* entry = GetEntryByName(ValueStr);
    if (entry == nullptr) {
        Throw<GenICam_3_4::InvalidArgumentException>("Cannot convert value '" + ValueStr.str() +
                                                         "', the value is invalid.",
                                                     "InvalidArgumentException", "FromString");
    }
    SetIntValue(entry->GetValue(), Verify);
}

} // namespace GenApi_3_4
