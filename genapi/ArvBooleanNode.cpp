#include "genapi/ArvBooleanNode.h"

#include <arv.h>

#include <mutex>
#include <strings.h>

#include "genapi/ArvNodeMap.h"
#include "genapi/GCException.h"

namespace GenApi_3_4 {

void ArvBooleanNode::SetValue(bool Value, bool Verify)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    if (Verify) {
        RequireWritable("SetValue");
    }
    CallArv("SetValue", [&](GError** e) { arv_gc_boolean_set_value(ARV_GC_BOOLEAN(FeatureNode()), Value, e); });
}

bool ArvBooleanNode::GetValue(bool /*Verify*/, bool IgnoreCache) const
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    RequireReadable("GetValue");
    return ReadArv("GetValue", IgnoreCache,
                   [&](GError** e) { return arv_gc_boolean_get_value(ARV_GC_BOOLEAN(FeatureNode()), e); }) != FALSE;
}

GenICam_3_4::gcstring ArvBooleanNode::ToString(bool Verify, bool IgnoreCache)
{
    return GetValue(Verify, IgnoreCache) ? "1" : "0";
}

void ArvBooleanNode::FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify)
{
    const char* text = ValueStr.c_str();
    if (strcasecmp(text, "true") == 0 || std::string(text) == "1") {
        SetValue(true, Verify);
    } else if (strcasecmp(text, "false") == 0 || std::string(text) == "0") {
        SetValue(false, Verify);
    } else {
        Throw<GenICam_3_4::InvalidArgumentException>("Cannot convert '" + ValueStr.str() + "' to a boolean.",
                                                     "InvalidArgumentException", "FromString");
    }
}

} // namespace GenApi_3_4
