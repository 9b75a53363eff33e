// Discovery per transport. Each one touches only its own Aravis interface, so the GigE Vision
// interface (which broadcasts on every host interface) is used only when GigE is asked for.
#pragma once

#include <list>
#include <mutex>

#include "ZylSdk.h"

namespace ZYLGENICAM {
namespace AravisDiscovery {

// Aravis's interface objects keep their device lists unguarded: listing and opening take turns.
std::mutex& InterfaceMutex();

void AppendGigeCameras(std::list<ICameraInfo*>& records);
void AppendUsbCameras(std::list<ICameraInfo*>& records);
void AppendSimulatedCameras(std::list<ICameraInfo*>& records);

} // namespace AravisDiscovery
} // namespace ZYLGENICAM
