// GigE Vision discovery and FORCEIP of our own. Both go out as GVCP broadcasts from each host
// adapter separately, and every answer is tied to the adapter it arrived on: a camera on a
// foreign subnet answers a broadcast even though no unicast reaches it, so it is still listed
// under its adapter with the identity its discovery acknowledge states, and its address can be
// forced from that adapter. (Aravis's interface keeps neither the adapter nor the user-defined
// name of what it found, and has no FORCEIP.)
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sdk/aravis/GvcpPacket.h"

namespace ZYLGENICAM {

struct GigeAdapter {
    unsigned index = 0;   // the host interface's index
    uint32_t address = 0; // host byte order
    uint32_t mask = 0;
};

struct DiscoveredGigeDevice {
    Gvcp::DiscoveryData data;
    GigeAdapter adapter; // the one its acknowledge arrived on

    // True when the device's address lies in the adapter's subnet, so unicast reaches it.
    bool ReachableByUnicast() const;
};

namespace GvcpDiscovery {

// How long answers to one discovery broadcast are collected.
constexpr int kDiscoveryWindowMs = 1000;

// Every device that answers on any IPv4 adapter that is up, each once (by MAC address).
std::vector<DiscoveredGigeDevice> Discover();
// The first device whose serial number is the given one.
std::optional<DiscoveredGigeDevice> FindBySerialNumber(const std::string& serialNumber);
// Forces the device's address, mask and gateway: SDK_OK on its acknowledge, SDK_TIMEOUT when
// none came within the GVCP timeout (GvcpBootstrapReader's attempts), SDK_ERROR when refused or
// not sendable.
int ForceIp(const DiscoveredGigeDevice& device, uint32_t ip, uint32_t mask, uint32_t gateway);

} // namespace GvcpDiscovery
} // namespace ZYLGENICAM
