#include "genapi/Representation.h"

#include <arv.h>

namespace GenApi_3_4 {

namespace {

ERepresentation RepresentationFromArv(ArvGcRepresentation arvRepresentation)
{
    switch (arvRepresentation) {
    case ARV_GC_REPRESENTATION_LINEAR:
        return Linear;
    case ARV_GC_REPRESENTATION_LOGARITHMIC:
        return Logarithmic;
    case ARV_GC_REPRESENTATION_BOOLEAN:
        return Boolean;
    case ARV_GC_REPRESENTATION_PURE_NUMBER:
        return PureNumber;
    case ARV_GC_REPRESENTATION_HEX_NUMBER:
        return HexNumber;
    case ARV_GC_REPRESENTATION_IPV4_ADDRESS:
        return IPV4Address;
    case ARV_GC_REPRESENTATION_MAC_ADDRESS:
        return MACAddress;
    default:
        return _UndefinedRepresentation;
    }
}

} // namespace

ERepresentation DeclaredRepresentation(ArvGcFeatureNode* featureNode)
{
    if (ARV_IS_GC_INTEGER(featureNode)) {
        return RepresentationFromArv(arv_gc_integer_get_representation(ARV_GC_INTEGER(featureNode)));
    }
    if (ARV_IS_GC_FLOAT(featureNode)) {
        return RepresentationFromArv(arv_gc_float_get_representation(ARV_GC_FLOAT(featureNode)));
    }
    return _UndefinedRepresentation;
}

} // namespace GenApi_3_4
