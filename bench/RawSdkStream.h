// The SDK on its own: a handle on one device, frames taken with GetImage and released at
// once. Side by side with the library on the same device description it shows how much of
// a frame's cost is the SDK's and how much is the layer's.
#pragma once

#include <cstdint>
#include <string>

#include "StreamWindow.h"
#include "ZylSdk.h"

namespace Bench {

class RawSdkStream {
public:
    // Finds the device by serial number among the given transport types and opens a handle.
    RawSdkStream(const std::string& serialNumber, uint64_t tlMask);
    ~RawSdkStream();
    RawSdkStream(const RawSdkStream&) = delete;
    RawSdkStream& operator=(const RawSdkStream&) = delete;

    bool IsReady() const { return m_camera != nullptr; }
    // Takes frames for `seconds` (first a short warm-up outside the window).
    StreamWindow RunSeconds(double seconds);
    // Takes exactly `frames` frames (fewer if the SDK stops answering with frames).
    uint64_t DrainFrames(uint64_t frames);

private:
    ZYLGENICAM::ICamera* m_camera = nullptr;
};

} // namespace Bench
