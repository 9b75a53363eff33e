#include "genapi/ArvIntegerNode.h"

#include <arv.h>

#include <limits>
#include <mutex>

#include "genapi/ArvNodeMap.h"
#include "genapi/GCException.h"
#include "genapi/IntegerText.h"

namespace GenApi_3_4 {

namespace {

ArvGcInteger* AsArvInteger(ArvGcFeatureNode* featureNode)
{
    return ARV_GC_INTEGER(featureNode);
}

} // namespace

void ArvIntegerNode::CheckRange(int64_t value, const char* operation)
{
    const int64_t min = GetMin();
    const int64_t max = GetMax();
    const int64_t inc = GetInc();
    const auto refuse = [&](const std::string& rule) {
        Throw<GenICam_3_4::OutOfRangeException>("Value = " + std::to_string(value) + rule, "OutOfRangeException",
                                                operation);
    };
    if (value < min) {
        refuse(" must be equal or greater than Min = " + std::to_string(min) + ".");
    }
    if (value > max) {
        refuse(" must be equal or smaller than Max = " + std::to_string(max) + ".");
    }
    // value >= min here, so the unsigned difference cannot wrap.
    const uint64_t offset = static_cast<uint64_t>(value) - static_cast<uint64_t>(min);
    if (inc > 1 && offset % static_cast<uint64_t>(inc) != 0) {
        refuse(" must be a multiple of Inc = " + std::to_string(inc) + " added to Min = " + std::to_string(min) + ".");
    }
}

void ArvIntegerNode::SetValue(int64_t Value, bool Verify)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    if (Verify) {
        RequireWritable("SetValue");
        CheckRange(Value, "SetValue");
    }
    CallArv("SetValue", [&](GError** e) { arv_gc_integer_set_value(AsArvInteger(FeatureNode()), Value, e); });
}

int64_t ArvIntegerNode::GetValue(bool Verify, bool IgnoreCache)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    // GenApi tests readability whatever Verify says; Verify adds the range check of the value read.
    RequireReadable("GetValue");
    const int64_t value = ReadArv("GetValue", IgnoreCache,
                                  [&](GError** e) { return arv_gc_integer_get_value(AsArvInteger(FeatureNode()), e); });
    if (Verify) {
        CheckRange(value, "GetValue");
    }
    return value;
}

int64_t ArvIntegerNode::GetMin()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    // Nodes without a declared minimum (IntSwissKnife, IntConverter) span the whole 64-bit range, as in GenApi.
    return CallArvOr<int64_t>("GetMin", std::numeric_limits<int64_t>::min(),
                              [&](GError** e) { return arv_gc_integer_get_min(AsArvInteger(FeatureNode()), e); });
}

int64_t ArvIntegerNode::GetMax()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return CallArvOr<int64_t>("GetMax", std::numeric_limits<int64_t>::max(),
                              [&](GError** e) { return arv_gc_integer_get_max(AsArvInteger(FeatureNode()), e); });
}

int64_t ArvIntegerNode::GetInc()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    const int64_t inc = CallArvOr<int64_t>(
        "GetInc", 1, [&](GError** e) { return arv_gc_integer_get_inc(AsArvInteger(FeatureNode()), e); });
    return inc > 0 ? inc : 1;
}

ERepresentation ArvIntegerNode::GetRepresentation()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return RepresentationAlongValueChain();
}

GenICam_3_4::gcstring ArvIntegerNode::GetUnit() const
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return GenICam_3_4::gcstring(arv_gc_integer_get_unit(AsArvInteger(FeatureNode())));
}

GenICam_3_4::gcstring ArvIntegerNode::ToString(bool Verify, bool IgnoreCache)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return FormatInteger(GetValue(Verify, IgnoreCache), GetRepresentation());
}

void ArvIntegerNode::FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    int64_t value = 0;
    if (!ParseInteger(ValueStr, GetRepresentation(), value)) {
        Throw<GenICam_3_4::InvalidArgumentException>("Cannot convert '" + ValueStr.str() + "' to an integer.",
                                                     "InvalidArgumentException", "FromString");
    }
    SetValue(value, Verify);
}

} // namespace GenApi_3_4
