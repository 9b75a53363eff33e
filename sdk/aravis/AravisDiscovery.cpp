#include "sdk/aravis/AravisDiscovery.h"

#include <arv.h>

#include <algorithm>
#include <cctype>
#include <functional>
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

namespace {

// Refreshes one Aravis interface and lists its devices; addressFields adds what only that
// transport knows while the interface is still locked.
std::vector<AravisDeviceRecord> ListInterfaceDevices(
    ArvInterface* (*interfaceInstance)(), int tlType,
    const std::function<void(ArvInterface*, unsigned, AravisDeviceRecord&)>& addressFields)
{
    std::vector<AravisDeviceRecord> found;
    std::lock_guard<std::mutex> lock(InterfaceMutex());
    ArvInterface* transport = interfaceInstance();
    arv_interface_update_device_list(transport);
    unsigned count = arv_interface_get_n_devices(transport);
    for (unsigned i = 0; i < count; ++i) {
        AravisDeviceRecord record = InterfaceRecord(transport, i, tlType);
        addressFields(transport, i, record);
        found.push_back(std::move(record));
    }
    return found;
}

} // namespace

void AppendGigeCameras(std::list<ICameraInfo*>& records)
{
    std::vector<AravisDeviceRecord> found = ListInterfaceDevices(
        arv_gv_interface_get_instance, TL_GIGE, [](ArvInterface* gige, unsigned i, AravisDeviceRecord& record) {
            record.ipAddress = Text(arv_interface_get_device_address(gige, i));
            record.macAddress = UpperCase(Text(arv_interface_get_device_physical_id(gige, i)));
        });
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
    std::vector<AravisDeviceRecord> found =
        ListInterfaceDevices(arv_uv_interface_get_instance, TL_USB, [](ArvInterface*, unsigned, AravisDeviceRecord&) {});
    for (AravisDeviceRecord& record : found) {
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
