#include "genapi/ArvStringNode.h"

#include <arv.h>

#include <mutex>

#include "genapi/ArvNodeMap.h"
#include "genapi/GCException.h"

namespace GenApi_3_4 {

void ArvStringNode::SetValue(const GenICam_3_4::gcstring& Value, bool Verify)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    if (Verify) {
        RequireWritable("SetValue");
        const int64_t maxLength = GetMaxLength();
        if (static_cast<int64_t>(Value.size()) > maxLength) {
            Throw<GenICam_3_4::OutOfRangeException>("String of length " + std::to_string(Value.size()) +
                                                        " is longer than MaxLength = " + std::to_string(maxLength) +
                                                        ".",
                                                    "OutOfRangeException", "SetValue");
        }
    }
    CallArv("SetValue", [&](GError** e) { arv_gc_string_set_value(ARV_GC_STRING(FeatureNode()), Value.c_str(), e); });
}

GenICam_3_4::gcstring ArvStringNode::GetValue(bool /*Verify*/, bool IgnoreCache)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    RequireReadable("GetValue");
    return GenICam_3_4::gcstring(ReadArv(
        "GetValue", IgnoreCache, [&](GError** e) { return arv_gc_string_get_value(ARV_GC_STRING(FeatureNode()), e); }));
}

int64_t ArvStringNode::GetMaxLength()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return CallArv("GetMaxLength",
                   [&](GError** e) { return arv_gc_string_get_max_length(ARV_GC_STRING(FeatureNode()), e); });
}

GenICam_3_4::gcstring ArvStringNode::ToString(bool Verify, bool IgnoreCache)
{
    return GetValue(Verify, IgnoreCache);
}

void ArvStringNode::FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify)
{
    SetValue(ValueStr, Verify);
}

} // namespace GenApi_3_4
