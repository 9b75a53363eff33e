// One of our simulated cameras: an in-process Aravis fake device carrying a GenICam description
// of ours, its identity written into the device's bootstrap texts and a frame filler of ours.
#pragma once

#include <arv.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "sdk/aravis/GObjectPtr.h"
#include "sdk/aravis/SimulatedKind.h"

namespace ZYLGENICAM {

class SimulatedDevice {
public:
    // Null when Aravis cannot create the device.
    static std::shared_ptr<SimulatedDevice> Create(SimulatedKind kind);

    SimulatedKind Kind() const { return m_kind; }
    ArvDevice* Device() const { return m_device.get(); }
    // A bootstrap text as the device holds it now (the user-defined name changes on rename).
    std::string ReadText(uint32_t address, uint32_t length) const;

    // One handle at a time may have the device open, as with a real camera.
    bool TryOpen();
    void CloseAccess();
    bool IsOpen() const { return m_open.load(); }

    SimulatedDevice(SimulatedKind kind, GObjectPtr<ArvDevice> device);

private:
    static std::string BuildDescription(SimulatedKind kind);
    void WriteText(uint32_t address, uint32_t length, const std::string& text);
    void WriteRegister(uint32_t address, uint32_t value);
    void WriteDefaults();

    SimulatedKind m_kind;
    GObjectPtr<ArvDevice> m_device;
    ArvFakeCamera* m_camera; // owned by m_device
    std::atomic<bool> m_open{false};
};

} // namespace ZYLGENICAM
