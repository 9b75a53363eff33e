#include "genapi/ArvEnumEntryNode.h"

#include <arv.h>

#include <cstdlib>
#include <mutex>

#include "genapi/ArvNodeMap.h"

namespace GenApi_3_4 {

int64_t ArvEnumEntryNode::GetValue()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return CallArv("GetValue",
                   [&](GError** e) { return arv_gc_enum_entry_get_value(ARV_GC_ENUM_ENTRY(FeatureNode()), e); });
}

GenICam_3_4::gcstring ArvEnumEntryNode::GetSymbolic() const
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return GenICam_3_4::gcstring(arv_gc_feature_node_get_name(FeatureNode()));
}

double ArvEnumEntryNode::GetNumericValue()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    GenICam_3_4::gcstring numeric;
    GenICam_3_4::gcstring attribute;
    if (GetProperty("NumericValue", numeric, attribute)) {
        return std::strtod(numeric.c_str(), nullptr);
    }
    return static_cast<double>(GetValue());
}

bool ArvEnumEntryNode::IsSelfClearing()
{
    GenICam_3_4::gcstring selfClearing;
    GenICam_3_4::gcstring attribute;
    return GetProperty("IsSelfClearing", selfClearing, attribute) && selfClearing == "Yes";
}

GenICam_3_4::gcstring ArvEnumEntryNode::ToString(bool /*Verify*/, bool /*IgnoreCache*/)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    RequireReadable("ToString");
    return GetSymbolic();
}

} // namespace GenApi_3_4
