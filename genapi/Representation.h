#pragma once

#include "genapi/ArvForward.h"
#include "genapi/Types.h"

namespace GenApi_3_4 {

// The <Representation> the node's own element declares (Integer and Float kinds); _UndefinedRepresentation
// when it declares none.
ERepresentation DeclaredRepresentation(ArvGcFeatureNode* featureNode);

} // namespace GenApi_3_4
