#include "sdk/aravis/SimulatedCameraRegistry.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sstream>

namespace ZYLGENICAM {

SimulatedCameraRegistry& SimulatedCameraRegistry::Instance()
{
    static SimulatedCameraRegistry registry;
    return registry;
}

std::vector<SimulatedKind> SimulatedCameraRegistry::KindsFromSetting(const char* value)
{
    const SimulatedKind all[] = {SimulatedKind::Area, SimulatedKind::ShowMode, SimulatedKind::Profile};
    if (value == nullptr)
        return {};
    std::vector<std::string> names;
    std::stringstream stream{std::string(value)};
    for (std::string name; std::getline(stream, name, ',');) {
        name.erase(std::remove_if(name.begin(), name.end(), [](unsigned char c) { return std::isspace(c); }),
                   name.end());
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return char(std::tolower(c)); });
        names.push_back(name);
    }
    std::vector<SimulatedKind> kinds;
    const char* kindNames[] = {"area", "showmode", "profile"};
    for (int i = 0; i < 3; ++i) {
        bool wanted = std::find(names.begin(), names.end(), "1") != names.end() ||
                      std::find(names.begin(), names.end(), kindNames[i]) != names.end();
        if (wanted)
            kinds.push_back(all[i]);
    }
    return kinds;
}

std::shared_ptr<SimulatedDevice> SimulatedCameraRegistry::DeviceOf(SimulatedKind kind)
{
    std::shared_ptr<SimulatedDevice>& slot = m_devices[int(kind)];
    if (!slot)
        slot = SimulatedDevice::Create(kind);
    return slot;
}

std::vector<std::shared_ptr<SimulatedDevice>> SimulatedCameraRegistry::RequestedDevices()
{
    std::vector<std::shared_ptr<SimulatedDevice>> devices;
    std::lock_guard<std::mutex> lock(m_mutex);
    for (SimulatedKind kind : KindsFromSetting(std::getenv(kEnvironmentVariable))) {
        if (auto device = DeviceOf(kind))
            devices.push_back(std::move(device));
    }
    return devices;
}

void SimulatedCameraRegistry::Clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto& device : m_devices)
        device.reset();
}

} // namespace ZYLGENICAM
