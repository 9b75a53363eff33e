// The library side of a GigE test, set up once its camera is running: the camera SDK, the device
// manager looking for GigE cameras only, an event recorder and a temporary application
// directory. Released when the test ends.
#pragma once

#include <memory>
#include <string>

#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/DeviceEventRecorder.h"
#include "support/common/TempDirectory.h"

class DeviceManager;

class GigeDiscoveryStage {
public:
    GigeDiscoveryStage();
    ~GigeDiscoveryStage();
    GigeDiscoveryStage(const GigeDiscoveryStage&) = delete;
    GigeDiscoveryStage& operator=(const GigeDiscoveryStage&) = delete;

    // Refreshes until a pass lists the camera with this serial number; its identifier, or empty.
    std::string WaitForListed(const std::string& serialNumber, int passes = 10);

    DeviceEventRecorder events;
    DeviceManager* manager = nullptr;

private:
    TempDirectory m_directory;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
};

// The identifier of the listed camera whose serial number is given, or empty.
std::string ListedIdentifier(const DeviceEventRecorder::Events& events, const std::string& serialNumber);
