#include "sdk/aravis/AravisDiscovery.h"

#include <arv.h>

#include <algorithm>
#include <cctype>
#include <vector>

#include "sdk/aravis/AravisCameraInfo.h"
#include "sdk/aravis/GvcpBootstrapReader.h"
#include "sdk/aravis/SimulatedCameraRegistry.h"
#include "sdk/aravis/SimulatedIdentity.h"
#include "sdk/aravis/SimulatedRegisters.h"

namespace ZYLGENICAM {
namespace AravisDiscovery {

namespace {

std::string Text(const char* text)
{
    return text != nullptr ? text : "";
}

std::string UpperCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    return text;
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

void AppendGigeCameras(std::list<ICameraInfo*>& records)
{
    std::vector<AravisDeviceRecord> found;
    {
        std::lock_guard<std::mutex> lock(InterfaceMutex());
        ArvInterface* gige = arv_gv_interface_get_instance();
        arv_interface_update_device_list(gige);
        unsigned count = arv_interface_get_n_devices(gige);
        for (unsigned i = 0; i < count; ++i) {
            AravisDeviceRecord record = InterfaceRecord(gige, i, TL_GIGE);
            record.ipAddress = Text(arv_interface_get_device_address(gige, i));
            record.macAddress = UpperCase(Text(arv_interface_get_device_physical_id(gige, i)));
            found.push_back(std::move(record));
        }
    }
    for (AravisDeviceRecord& record : found) {
        GigeBootstrapInfo bootstrap;
        if (GvcpBootstrapReader::Read(record.ipAddress, bootstrap)) {
            record.subnetMask = bootstrap.subnetMask;
            record.gateway = bootstrap.gateway;
            record.userDefinedName = bootstrap.userDefinedName;
            if (!bootstrap.deviceVersion.empty())
                record.deviceVersion = bootstrap.deviceVersion;
            record.hostInterfaceAddress = bootstrap.hostInterfaceAddress;
            record.accessStatus = bootstrap.controlled ? ACCESS_BUSY : ACCESS_AVAILABLE;
        }
        records.push_back(new AravisCameraInfo(std::move(record)));
    }
}

// USB3 Vision lists no user-defined name without opening the device; such devices are listed by
// model name, and an open device is always reported as available by Aravis.
void AppendUsbCameras(std::list<ICameraInfo*>& records)
{
    std::lock_guard<std::mutex> lock(InterfaceMutex());
    ArvInterface* usb = arv_uv_interface_get_instance();
    arv_interface_update_device_list(usb);
    unsigned count = arv_interface_get_n_devices(usb);
    for (unsigned i = 0; i < count; ++i) {
        AravisDeviceRecord record = InterfaceRecord(usb, i, TL_USB);
        record.accessStatus = ACCESS_AVAILABLE;
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
