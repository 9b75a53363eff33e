#pragma once

#include "genapi/Types.h"

namespace GenApi_3_4 {

// Aravis's ArvGcRepresentation value (passed as int to keep GLib types out of this header) as GenApi's enum.
ERepresentation RepresentationFromArv(int arvRepresentation);

} // namespace GenApi_3_4
