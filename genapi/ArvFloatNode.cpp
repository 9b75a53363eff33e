#include "genapi/ArvFloatNode.h"

#include <arv.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <vector>

#include "genapi/ArvNodeMap.h"
#include "genapi/GCException.h"
#include "genapi/IInteger.h"

namespace GenApi_3_4 {

namespace {

ArvGcFloat* AsArvFloat(ArvGcFeatureNode* featureNode)
{
    return ARV_GC_FLOAT(featureNode);
}

// Shortest text that reads back as the same double.
std::string FormatDouble(double value)
{
    char buffer[40];
    for (int precision = 6; precision <= 17; ++precision) {
        std::snprintf(buffer, sizeof buffer, "%.*g", precision, value);
        if (std::strtod(buffer, nullptr) == value) {
            break;
        }
    }
    return buffer;
}

} // namespace

void ArvFloatNode::CheckRange(double value, const char* operation)
{
    const double min = GetMin();
    const double max = GetMax();
    const auto refuse = [&](const std::string& rule) {
        Throw<GenICam_3_4::OutOfRangeException>("Value = " + FormatDouble(value) + rule, "OutOfRangeException",
                                                operation);
    };
    if (std::isnan(value)) {
        refuse(" is not a number.");
    }
    if (value < min) {
        refuse(" must be equal or greater than Min = " + FormatDouble(min) + ".");
    }
    if (value > max) {
        refuse(" must be equal or smaller than Max = " + FormatDouble(max) + ".");
    }
}

void ArvFloatNode::SetValue(double Value, bool Verify)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    if (Verify) {
        RequireWritable("SetValue");
        CheckRange(Value, "SetValue");
    }
    CallArv("SetValue", [&](GError** e) { arv_gc_float_set_value(AsArvFloat(FeatureNode()), Value, e); });
}

double ArvFloatNode::GetValue(bool Verify, bool IgnoreCache)
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    RequireReadable("GetValue");
    const double value = ReadArv("GetValue", IgnoreCache,
                                 [&](GError** e) { return arv_gc_float_get_value(AsArvFloat(FeatureNode()), e); });
    if (Verify) {
        CheckRange(value, "GetValue");
    }
    return value;
}

double ArvFloatNode::GetMin()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    // Nodes without a declared minimum (SwissKnife, Converter) span every double, as in GenApi.
    return CallArvOr<double>("GetMin", -std::numeric_limits<double>::max(),
                             [&](GError** e) { return arv_gc_float_get_min(AsArvFloat(FeatureNode()), e); });
}

double ArvFloatNode::GetMax()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return CallArvOr<double>("GetMax", std::numeric_limits<double>::max(),
                             [&](GError** e) { return arv_gc_float_get_max(AsArvFloat(FeatureNode()), e); });
}

bool ArvFloatNode::HasInc()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    // ArvGc reports the smallest double when no increment is declared, so the documents decide; a value that
    // comes from an integer steps by that integer's increment.
    const std::vector<const ArvNode*> chain = ValueChain();
    return std::any_of(chain.begin(), chain.end(),
                       [](const ArvNode* node) {
                           return node->HasPropertyElement("Inc") || node->HasPropertyElement("pInc");
                       }) ||
           dynamic_cast<const IInteger*>(chain.back()) != nullptr;
}

double ArvFloatNode::GetInc()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    if (!HasInc()) {
        Throw<GenICam_3_4::RuntimeException>("Node does not have an increment.", "RuntimeException", "GetInc");
    }
    return CallArv("GetInc", [&](GError** e) { return arv_gc_float_get_inc(AsArvFloat(FeatureNode()), e); });
}

ERepresentation ArvFloatNode::GetRepresentation()
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return RepresentationAlongValueChain();
}

GenICam_3_4::gcstring ArvFloatNode::GetUnit() const
{
    const ArvNodeMap::Lock lock(NodeMap().Mutex());
    return GenICam_3_4::gcstring(arv_gc_float_get_unit(AsArvFloat(FeatureNode())));
}

GenICam_3_4::gcstring ArvFloatNode::ToString(bool Verify, bool IgnoreCache)
{
    return FormatDouble(GetValue(Verify, IgnoreCache));
}

void ArvFloatNode::FromString(const GenICam_3_4::gcstring& ValueStr, bool Verify)
{
    const char* text = ValueStr.c_str();
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(text, &end);
    if (end == text || *end != '\0' || errno == ERANGE) {
        Throw<GenICam_3_4::InvalidArgumentException>("Cannot convert '" + ValueStr.str() + "' to a float.",
                                                     "InvalidArgumentException", "FromString");
    }
    SetValue(value, Verify);
}

} // namespace GenApi_3_4
