// The ZYLGENICAM free functions on Aravis.
#include <arv.h>

#include "ZylSdk.h"
#include "sdk/aravis/AravisCamera.h"
#include "sdk/aravis/AravisCameraInfo.h"
#include "sdk/aravis/AravisDiscovery.h"
#include "sdk/aravis/GObjectPtr.h"
#include "sdk/aravis/GvcpDiscovery.h"
#include "sdk/aravis/SimulatedCameraRegistry.h"

namespace ZYLGENICAM {

int Init()
{
    return SDK_OK;
}

// Lost devices still being let go are left to their worker: waiting here would hold the host's
// shutdown for as long as Aravis retries a device that no longer answers.
int UnInit()
{
    SimulatedCameraRegistry::Instance().Clear();
    return SDK_OK;
}

std::list<ICameraInfo*> DiscoveryByTLType(uint64_t mask)
{
    std::list<ICameraInfo*> records;
    if (mask & TL_GIGE)
        AravisDiscovery::AppendGigeCameras(records);
    if (mask & TL_USB)
        AravisDiscovery::AppendUsbCameras(records);
    if (mask & TL_SIMULATED)
        AravisDiscovery::AppendSimulatedCameras(records);
    return records;
}

ICamera* CreateCamera(ICameraInfo* info)
{
    auto* record = dynamic_cast<AravisCameraInfo*>(info);
    if (record == nullptr)
        return nullptr;
    return new AravisCamera(record->Record());
}

// Aravis has no Camera Link support: nothing to list.
std::list<ICameraInfo*> DiscoveryCLCards()
{
    return {};
}

std::list<ICameraInfo*> DiscoveryCLCameras()
{
    return {};
}

std::list<std::string> GetCLSerials()
{
    return {};
}

std::list<std::string> GetCLProtocols()
{
    return {};
}

namespace {

struct IpConfiguration {
    uint32_t ip = 0;
    uint32_t mask = 0;
    uint32_t gateway = 0;
};

// Writes the persistent-IP registers and switches the device to persistent-IP configuration over
// a unicast connection that takes control.
int WritePersistentAddress(const DiscoveredGigeDevice& device, const IpConfiguration& wanted)
{
    GObjectPtr<ArvDevice> opened =
        AravisDiscovery::OpenGigeDevice(Gvcp::AddressText(device.adapter.address), Gvcp::AddressText(device.data.ip));
    if (!opened)
        return SDK_ERROR;
    auto* gv = ARV_GV_DEVICE(opened.get());
    if (!arv_gv_device_is_controller(gv))
        return SDK_ACCESS_DENIED;
    GError* error = nullptr;
    bool stored = arv_gv_device_set_persistent_ip_from_string(gv, Gvcp::AddressText(wanted.ip).c_str(),
                                                              Gvcp::AddressText(wanted.mask).c_str(),
                                                              Gvcp::AddressText(wanted.gateway).c_str(), &error) &&
                  arv_gv_device_set_ip_configuration_mode(gv, ARV_GV_IP_CONFIGURATION_MODE_PERSISTENT_IP, &error);
    g_clear_error(&error);
    return stored ? SDK_OK : SDK_ERROR;
}

// A device unicast cannot reach gets its new address forced first; one that can is forced after
// the write (which needs the old address), so it answers at the new address without a restart.
int StorePersistentAddress(DiscoveredGigeDevice device, const IpConfiguration& wanted)
{
    bool forceFirst = !device.ReachableByUnicast();
    if (forceFirst) {
        int forced = GvcpDiscovery::ForceIp(device, wanted.ip, wanted.mask, wanted.gateway);
        if (forced != SDK_OK)
            return forced;
        device.data.ip = wanted.ip;
        if (!device.ReachableByUnicast())
            return SDK_ERROR;
    }
    int stored = WritePersistentAddress(device, wanted);
    if (stored != SDK_OK || forceFirst || device.data.ip == wanted.ip)
        return stored;
    return GvcpDiscovery::ForceIp(device, wanted.ip, wanted.mask, wanted.gateway);
}

} // namespace

// persistent = false forces a temporary address (lost at the device's next restart); true stores
// it as the device's persistent address and applies it at once. The device is found by a
// discovery broadcast, so it may sit on a foreign subnet.
int64_t SetCameraIP(const char* serialNumber, const char* ip, const char* mask, const char* gateway, bool persistent)
{
    IpConfiguration wanted;
    if (serialNumber == nullptr || ip == nullptr || mask == nullptr || gateway == nullptr ||
        !Gvcp::ParseAddress(ip, wanted.ip) || !Gvcp::ParseAddress(mask, wanted.mask) ||
        !Gvcp::ParseAddress(gateway, wanted.gateway))
        return SDK_INVALID_ARGUMENT;
    std::optional<DiscoveredGigeDevice> device = GvcpDiscovery::FindBySerialNumber(serialNumber);
    if (!device)
        return SDK_ERROR;
    if (!persistent)
        return GvcpDiscovery::ForceIp(*device, wanted.ip, wanted.mask, wanted.gateway);
    return StorePersistentAddress(*device, wanted);
}

} // namespace ZYLGENICAM
