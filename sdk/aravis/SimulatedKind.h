#pragma once

namespace ZYLGENICAM {

// Our simulated cameras (transport-layer type 8).
enum class SimulatedKind { Area, ShowMode, Profile };

} // namespace ZYLGENICAM
