#include "ScriptedFleet.h"

#include <cstdio>

namespace Bench {

namespace {

constexpr uint64_t kSmallSide = 64;

// Fleet devices are GigE cameras on loopback, each with its own address and MAC.
Scripted::DeviceDescription FleetDescription(std::size_t index)
{
    char serial[16];
    char name[16];
    char ip[32];
    char mac[32];
    std::snprintf(serial, sizeof serial, "SC%05zu", index);
    std::snprintf(name, sizeof name, "Scale%05zu", index);
    std::snprintf(ip, sizeof ip, "127.1.%zu.%zu", index / 250, index % 250 + 1);
    std::snprintf(mac, sizeof mac, "02:00:00:00:%02zx:%02zx", index / 256, index % 256);
    auto description = Scripted::AreaCamera(serial, name);
    description.identity.ip = ip;
    description.identity.mac = mac;
    description.identity.mask = "255.0.0.0";
    description.identity.hostInterfaceIp = "127.0.0.1";
    description.frames = Scripted::FrameScript::Empty().Then(Scripted::WhenExhausted::KeepTimingOut);
    return description;
}

} // namespace

Scripted::FrameScript SmallFrames(uint64_t frames, bool thenTimeOut, std::chrono::milliseconds period)
{
    auto script = Scripted::FrameScript::Empty()
                      .AddFrames(1, frames == 0 ? 1 : frames, kSmallSide, kSmallSide)
                      .Then(thenTimeOut ? Scripted::WhenExhausted::KeepTimingOut : Scripted::WhenExhausted::Repeat);
    return script.Period(period);
}

ScriptedFleet& ScriptedFleet::Instance()
{
    static ScriptedFleet fleet;
    return fleet;
}

Scripted::ScriptedDevice& ScriptedFleet::StreamingCamera(const std::string& serial)
{
    if (auto* known = Scripted::ScriptedSdk::Instance().FindDevice(serial))
        return *known;
    auto description = Scripted::AreaCamera(serial, "", ZYLGENICAM::TL_SIMULATED);
    description.frames = SmallFrames(0, false);
    auto& device = Scripted::ScriptedSdk::Instance().AddDevice(description);
    m_streaming.push_back(&device);
    return device;
}

std::string ScriptedFleet::CameraId(const Scripted::ScriptedDevice& device)
{
    auto identity = device.Identity();
    const std::string& name = identity.userDefinedName.empty() ? identity.modelName : identity.userDefinedName;
    return name + "(" + identity.serialNumber + ")";
}

void ScriptedFleet::ShowFleet(std::size_t count)
{
    while (m_fleet.size() < count)
        m_fleet.push_back(&Scripted::ScriptedSdk::Instance().AddDevice(FleetDescription(m_fleet.size())));
    for (std::size_t i = 0; i < m_fleet.size(); ++i)
        m_fleet[i]->SetPresent(i < count);
}

void ScriptedFleet::ShowStreamingCameras(bool shown)
{
    for (auto* device : m_streaming)
        device->SetPresent(shown);
}

Scripted::ScriptedDevice& ScriptedFleet::FleetDevice(std::size_t index)
{
    return *m_fleet.at(index);
}

} // namespace Bench
