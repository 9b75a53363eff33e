// Several GigE Vision cameras streamed at once, either by plain Aravis loops (one thread per
// camera) or through the library (OpenCamera/StartGrab per camera). Frame figures are summed
// over the cameras; CPU is the whole process over the common window.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "FrameSink.h"
#include "StreamWindow.h"

namespace Bench {

struct FrameSettings {
    int width = 64;
    int height = 64;
    int frameRate = 1000;
    int packetSize = 0; // GevSCPSPacketSize in bytes; 0 keeps the camera's
};

struct FleetWindow {
    std::vector<StreamWindow> cameras;
    double wallSeconds = 0; // the common window
    double cpuSeconds = 0;  // whole process over it

    double FramesPerSecond() const { return Sum(&StreamWindow::FramesPerSecond); }
    double CameraFramesPerSecond() const { return Sum(&StreamWindow::CameraFramesPerSecond); }
    double FramesLost() const { return Sum(&StreamWindow::FramesLost); }
    // Share of the frames the cameras sent that arrived, over all of them.
    double ReceivedShare() const;
    double CpuMicrosecondsPerFrame() const;

private:
    double Sum(double (StreamWindow::*figure)() const) const;
};

// Waits out the measured window; the soak looks at the process meanwhile.
using WindowWait = std::function<void(double seconds)>;

// Opens each camera by its address with plain Aravis and runs a RawAravisStream per camera.
FleetWindow StreamWithPlainAravis(const std::vector<std::string>& addresses, const FrameSettings& settings,
                                  double seconds);

// Cameras the library listed, opened and set up together, each with a sink of its own.
class LibraryFleet {
public:
    // Each sink has room for `framesPerSink` deliveries (33 a second per camera).
    explicit LibraryFleet(std::vector<std::string> ids, std::size_t framesPerSink = 1 << 16);
    ~LibraryFleet();
    LibraryFleet(const LibraryFleet&) = delete;
    LibraryFleet& operator=(const LibraryFleet&) = delete;

    // False, with what failed, when a camera could not be opened or set up.
    bool Open(const FrameSettings& settings, std::string& why);
    FleetWindow Stream(double seconds, const WindowWait& wait = {});
    const FrameSink& Sink(std::size_t index) const { return *m_sinks[index]; }

private:
    std::vector<std::string> m_ids;
    std::size_t m_framesPerSink;
    std::vector<std::unique_ptr<FrameSink>> m_sinks;
    std::vector<std::string> m_opened;
};

} // namespace Bench
