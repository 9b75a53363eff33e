#include "sdk/aravis/AravisDiscovery.h"

#include <arv.h>

#include <vector>

#include "sdk/aravis/AravisCameraInfo.h"
#include "sdk/aravis/GvcpBootstrapReader.h"
#include "sdk/aravis/GvcpDiscovery.h"
#include "sdk/aravis/OpenUsbDevices.h"
#include "sdk/aravis/SimulatedCameraRegistry.h"
#include "sdk/aravis/SimulatedIdentity.h"
#include "sdk/aravis/SimulatedRegisters.h"
#include "genapi/GenicamParsing.h"

namespace ZYLGENICAM {
namespace AravisDiscovery {

namespace {

std::string Text(const char* text)
{
    return text != nullptr ? text : "";
}

// Identity fields every Aravis interface lists.
AravisDeviceRecord InterfaceRecord(ArvInterface* transport, unsigned index, int tlType)
{
    AravisDeviceRecord record;
    record.tlType = tlType;
    record.aravisDeviceId = Text(arv_interface_get_device_id(transport, index));
    record.serialNumber = Text(arv_interface_get_device_serial_nbr(transport, index));
    record.modelName = Text(arv_interface_get_device_model(transport, index));
    record.vendorName = Text(arv_interface_get_device_vendor(transport, index));
    record.deviceVersion = Text(arv_interface_get_device_manufacturer_info(transport, index));
    return record;
}

} // namespace

std::mutex& InterfaceMutex()
{
    static std::mutex mutex;
    return mutex;
}

GObjectPtr<ArvDevice> OpenGigeDevice(const std::string& interfaceAddress, const std::string& deviceAddress)
{
    GObjectPtr<GInetAddress> local(g_inet_address_new_from_string(interfaceAddress.c_str()));
    GObjectPtr<GInetAddress> remote(g_inet_address_new_from_string(deviceAddress.c_str()));
    if (!local || !remote)
        return nullptr;
    GError* error = nullptr;
    GObjectPtr<ArvDevice> device;
    {
        const auto parsing = GenApi_3_4::LockGenicamParsing();
        device.reset(arv_gv_device_new(local.get(), remote.get(), &error));
    }
    g_clear_error(&error);
    return device;
}

namespace {

int GigeAccessStatus(const DiscoveredGigeDevice& device, const std::string& address)
{
    if (!device.ReachableByUnicast())
        return ACCESS_NO_ACCESS;
    bool controlled = false;
    if (!GvcpBootstrapReader::ReadControlled(address, controlled))
        return ACCESS_UNKNOWN;
    return controlled ? ACCESS_BUSY : ACCESS_AVAILABLE;
}

} // namespace

// Identity and addresses come from the discovery acknowledge, which reaches us from any subnet;
// only whether another host controls the device needs a unicast read, and only a device in its
// adapter's subnet can be asked (one outside it is listed as not accessible).
void AppendGigeCameras(std::list<ICameraInfo*>& records)
{
    for (const DiscoveredGigeDevice& device : GvcpDiscovery::Discover()) {
        const Gvcp::DiscoveryData& data = device.data;
        AravisDeviceRecord record;
        record.tlType = TL_GIGE;
        record.serialNumber = data.serialNumber;
        record.modelName = data.model;
        record.userDefinedName = data.userDefinedName;
        record.vendorName = data.vendor;
        record.deviceVersion = data.deviceVersion.empty() ? data.manufacturerInfo : data.deviceVersion;
        record.ipAddress = Gvcp::AddressText(data.ip);
        record.macAddress = Gvcp::MacText(data.mac);
        record.subnetMask = Gvcp::AddressText(data.mask);
        record.gateway = Gvcp::AddressText(data.gateway);
        record.hostInterfaceAddress = Gvcp::AddressText(device.adapter.address);
        record.accessStatus = GigeAccessStatus(device, record.ipAddress);
        records.push_back(new AravisCameraInfo(std::move(record)));
    }
}

// USB3 Vision lists no user-defined name without opening the device: a device we have open is
// named by what it holds now and is busy; others are listed by model name, as available.
void AppendUsbCameras(std::list<ICameraInfo*>& records)
{
    std::vector<AravisDeviceRecord> found;
    {
        std::lock_guard<std::mutex> lock(InterfaceMutex());
        ArvInterface* usb = arv_uv_interface_get_instance();
        arv_interface_update_device_list(usb);
        unsigned count = arv_interface_get_n_devices(usb);
        for (unsigned i = 0; i < count; ++i)
            found.push_back(InterfaceRecord(usb, i, TL_USB));
    }
    for (AravisDeviceRecord& record : found) {
        bool ours = OpenUsbDevices::Instance().ReadUserDefinedName(record.aravisDeviceId, record.userDefinedName);
        record.accessStatus = ours ? ACCESS_BUSY : ACCESS_AVAILABLE;
        records.push_back(new AravisCameraInfo(std::move(record)));
    }
}

void AppendSimulatedCameras(std::list<ICameraInfo*>& records)
{
    namespace R = SimulatedRegisters;
    for (auto& device : SimulatedCameraRegistry::Instance().RequestedDevices()) {
        AravisDeviceRecord record;
        record.tlType = TL_SIMULATED;
        record.accessStatus = device->IsOpen() ? ACCESS_BUSY : ACCESS_AVAILABLE;
        record.serialNumber = device->ReadText(R::kSerialNumber, R::kUserDefinedNameLength);
        record.modelName = device->ReadText(R::kModelName, R::kTextLength);
        record.userDefinedName = device->ReadText(R::kUserDefinedName, R::kUserDefinedNameLength);
        record.vendorName = device->ReadText(R::kVendorName, R::kTextLength);
        record.deviceVersion = device->ReadText(R::kDeviceVersion, R::kTextLength);
        record.simulated = device;
        records.push_back(new AravisCameraInfo(std::move(record)));
    }
}

} // namespace AravisDiscovery
} // namespace ZYLGENICAM
