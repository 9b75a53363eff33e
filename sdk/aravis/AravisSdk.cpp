// The ZYLGENICAM free functions on Aravis.
#include <arv.h>

#include "ZylSdk.h"
#include "sdk/aravis/AravisCamera.h"
#include "sdk/aravis/AravisCameraInfo.h"
#include "sdk/aravis/AravisDiscovery.h"
#include "sdk/aravis/GObjectPtr.h"
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

// Aravis can only store a persistent address (applied at the device's next start); a temporary
// (forced) address is not offered, so that request is refused.
int64_t SetCameraIP(const char* serialNumber, const char* ip, const char* mask, const char* gateway, bool persistent)
{
    if (serialNumber == nullptr || ip == nullptr || mask == nullptr || gateway == nullptr)
        return SDK_INVALID_ARGUMENT;
    if (!persistent)
        return SDK_ERROR;
    std::lock_guard<std::mutex> lock(AravisDiscovery::InterfaceMutex());
    ArvInterface* gige = arv_gv_interface_get_instance();
    arv_interface_update_device_list(gige);
    unsigned count = arv_interface_get_n_devices(gige);
    for (unsigned i = 0; i < count; ++i) {
        const char* serial = arv_interface_get_device_serial_nbr(gige, i);
        if (serial == nullptr || std::string(serial) != serialNumber)
            continue;
        GError* error = nullptr;
        GObjectPtr<ArvDevice> device(arv_interface_open_device(gige, arv_interface_get_device_id(gige, i), &error));
        g_clear_error(&error);
        if (!device || !ARV_IS_GV_DEVICE(device.get()))
            return SDK_ERROR;
        auto* gv = ARV_GV_DEVICE(device.get());
        if (!arv_gv_device_is_controller(gv))
            return SDK_ACCESS_DENIED;
        bool stored = arv_gv_device_set_persistent_ip_from_string(gv, ip, mask, gateway, &error)
            && arv_gv_device_set_ip_configuration_mode(gv, ARV_GV_IP_CONFIGURATION_MODE_PERSISTENT_IP, &error);
        g_clear_error(&error);
        return stored ? SDK_OK : SDK_ERROR;
    }
    return SDK_ERROR;
}

} // namespace ZYLGENICAM
