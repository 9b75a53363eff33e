// The scripted devices of the benchmarks: one streaming camera per side of a comparison
// and a numbered fleet for the scale runs. Devices are added once and then only shown
// or hidden, since the scripted SDK keeps every device until it is reset.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/scripted/ScriptedSdk.h"

namespace Bench {

class ScriptedFleet {
public:
    static ScriptedFleet& Instance();

    // A small-frame area camera whose script repeats one frame for ever, ids 1, 2, 3...
    // `serial` names it; the same description is used for every streaming camera.
    Scripted::ScriptedDevice& StreamingCamera(const std::string& serial);
    // Identifier discovery forms for a device of this fleet.
    static std::string CameraId(const Scripted::ScriptedDevice& device);

    // Shows exactly the first `count` fleet devices (creating them as needed) and hides the rest.
    void ShowFleet(std::size_t count);
    // Shows or hides every streaming camera.
    void ShowStreamingCameras(bool shown);
    // A device ShowFleet has created.
    Scripted::ScriptedDevice& FleetDevice(std::size_t index);

private:
    ScriptedFleet() = default;

    std::vector<Scripted::ScriptedDevice*> m_fleet;
    std::vector<Scripted::ScriptedDevice*> m_streaming;
};

// The frame script of a streaming camera: `frames` small frames, then either again with
// rising ids (frames == 0 means one frame repeated for ever) or timeouts.
Scripted::FrameScript SmallFrames(uint64_t frames, bool thenTimeOut, std::chrono::milliseconds period = {});

} // namespace Bench
