// Discovery per transport. Each touches only its own transport, so GigE Vision discovery (which
// broadcasts on every host adapter) runs only when GigE is asked for.
#pragma once

#include <arv.h>

#include <list>
#include <mutex>
#include <string>

#include "ZylSdk.h"
#include "sdk/aravis/GObjectPtr.h"

namespace ZYLGENICAM {
namespace AravisDiscovery {

// Aravis's interface objects keep their device lists unguarded: listing and opening take turns.
std::mutex& InterfaceMutex();

// A GigE Vision device at an address, reached from the given host adapter address; null when
// it does not answer.
GObjectPtr<ArvDevice> OpenGigeDevice(const std::string& interfaceAddress, const std::string& deviceAddress);

void AppendGigeCameras(std::list<ICameraInfo*>& records);
void AppendUsbCameras(std::list<ICameraInfo*>& records);
void AppendSimulatedCameras(std::list<ICameraInfo*>& records);

} // namespace AravisDiscovery
} // namespace ZYLGENICAM
