// A device record of discovery: identity texts, GigE items, and where to open it.
#pragma once

#include <memory>
#include <string>

#include "ZylSdk.h"
#include "sdk/aravis/SimulatedDevice.h"

namespace ZYLGENICAM {

// Access states reported by GetAccessStatus (0 and 1 mean not available).
enum AccessStatus : int {
    ACCESS_UNKNOWN = 0,   // the device could not be asked
    ACCESS_NO_ACCESS = 1, // reserved: unreachable (e.g. no route to its address)
    ACCESS_AVAILABLE = 2, // nobody controls it: it can be opened
    ACCESS_BUSY = 3,      // another host or handle controls it: opening fails
};

struct AravisDeviceRecord {
    int tlType = 0;
    int accessStatus = ACCESS_UNKNOWN;
    std::string serialNumber;
    std::string modelName;
    std::string userDefinedName;
    std::string vendorName;
    std::string deviceVersion;
    std::string ipAddress;
    std::string macAddress;
    std::string subnetMask;
    std::string gateway;
    std::string hostInterfaceAddress;
    std::string aravisDeviceId;                 // GigE and USB: the id Aravis opens it by
    std::shared_ptr<SimulatedDevice> simulated; // transport 8
};

class AravisCameraInfo final : public ICameraInfo {
public:
    explicit AravisCameraInfo(AravisDeviceRecord record) : m_record(std::move(record)) {}

    int GetTLType() override { return m_record.tlType; }
    int GetAccessStatus() override { return m_record.accessStatus; }
    const char* GetSerialNumber() override { return m_record.serialNumber.c_str(); }
    const char* GetModelName() override { return m_record.modelName.c_str(); }
    const char* GetUserDefinedName() override { return m_record.userDefinedName.c_str(); }
    const char* GetDeviceText() override { return m_record.vendorName.c_str(); }
    const char* GetDeviceText2() override { return m_record.deviceVersion.c_str(); }
    const char* GetGigEInfo(int item) override;
    const char* GetCLInfo(int) override { return ""; }
    void Destroy() override { delete this; }

    const AravisDeviceRecord& Record() const { return m_record; }

private:
    ~AravisCameraInfo() = default;
    friend class AravisCamera; // owns its record for the camera's lifetime

    AravisDeviceRecord m_record;
};

} // namespace ZYLGENICAM
