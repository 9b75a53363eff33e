// The baseline every frame-path figure is compared with: a plain Aravis loop that pops
// each buffer and pushes it straight back, on the same camera the library streams.
#pragma once

#include <arv.h>

#include <string>

#include "LatencySamples.h"
#include "StreamWindow.h"

namespace Bench {

// Opens the GigE Vision camera at `address` (on loopback) without Aravis's interface lists: the
// library's discovery updates those from its own thread, and Aravis does not guard them.
ArvCamera* OpenRawGigeCamera(const std::string& address);

class RawAravisStream {
public:
    RawAravisStream(ArvCamera* camera, unsigned bufferCount);
    ~RawAravisStream();
    RawAravisStream(const RawAravisStream&) = delete;
    RawAravisStream& operator=(const RawAravisStream&) = delete;

    bool IsReady() const { return m_stream != nullptr; }
    // Acquires for a short warm-up plus `seconds`; the window covers the latter only.
    // Each frame's age (wall clock at pop minus the buffer's timestamp) goes to `ages` when given.
    StreamWindow Run(double seconds, LatencySamples* ages = nullptr);

private:
    ArvCamera* m_camera;
    ArvStream* m_stream = nullptr;
};

} // namespace Bench
