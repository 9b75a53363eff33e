// The simulated cameras of this process, created on first discovery and kept until UnInit so that
// renames and open handles persist between discovery passes. Which ones are listed is read from
// the environment variable VIEWERBIZ3_SIMULATED_CAMERAS at every discovery: "1" lists all three,
// otherwise a comma-separated list of "area", "showmode", "profile".
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "sdk/aravis/SimulatedDevice.h"

namespace ZYLGENICAM {

class SimulatedCameraRegistry {
public:
    static SimulatedCameraRegistry& Instance();

    static constexpr const char* kEnvironmentVariable = "VIEWERBIZ3_SIMULATED_CAMERAS";

    // The devices the environment asks for, in the order area, show-mode, profile.
    std::vector<std::shared_ptr<SimulatedDevice>> RequestedDevices();
    void Clear();

    // Kinds named by a value of the environment variable (unknown names are ignored).
    static std::vector<SimulatedKind> KindsFromSetting(const char* value);

private:
    std::shared_ptr<SimulatedDevice> DeviceOf(SimulatedKind kind);

    std::mutex m_mutex;
    std::shared_ptr<SimulatedDevice> m_devices[3];
};

} // namespace ZYLGENICAM
