// What one streaming window measured, for either side of a comparison.
#pragma once

#include <algorithm>
#include <cstdint>

#include "AllocationCounter.h"

namespace Bench {

// Frames the camera sent from one frame id to the next one seen. GigE Vision block ids count to
// 65535 and go on at 1, so a smaller id means the count wrapped.
inline uint64_t FrameIdStep(uint64_t previous, uint64_t id)
{
    constexpr uint64_t kBlockIdWrap = 65535;
    return id >= previous ? id - previous : id + kBlockIdWrap - previous;
}

struct StreamWindow {
    uint64_t framesReceived = 0;
    double framesProduced = 0; // what the camera sent meanwhile, from its frame ids
    double wallSeconds = 0;
    double cpuSeconds = 0;        // whole process, every thread
    AllocationTotals allocations; // whole process, over the window
    uint64_t hostDeliveries = 0;  // frames that reached the host's image listener in the window

    double FramesPerSecond() const { return wallSeconds > 0 ? static_cast<double>(framesReceived) / wallSeconds : 0; }
    double CpuMicrosecondsPerFrame() const
    {
        return framesReceived > 0 ? cpuSeconds * 1e6 / static_cast<double>(framesReceived) : 0;
    }
    double CameraFramesPerSecond() const { return wallSeconds > 0 ? framesProduced / wallSeconds : 0; }
    // Share of the frames the camera sent that arrived.
    double ReceivedShare() const
    {
        return framesProduced > 0 ? std::min(1.0, static_cast<double>(framesReceived) / framesProduced) : 0;
    }
    double FramesLost() const
    {
        double lost = framesProduced - static_cast<double>(framesReceived);
        return lost > 0 ? lost : 0;
    }
};

} // namespace Bench
