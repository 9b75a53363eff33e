// The library as a host sees it, started once per benchmark program: Init on first use,
// UnInit when the program ends. Benchmarks reach devices only through the exported functions.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "DeviceListWatcher.h"
#include "FrameSink.h"
#include "StreamWindow.h"

namespace Bench {

class LibrarySession {
public:
    static LibrarySession& Instance();

    // Selects the transport types and runs discovery until the published list satisfies
    // the condition. GigE Vision (bit 1) is refused outside a private network namespace.
    bool Discover(unsigned long long mask, const std::function<bool(const std::vector<std::string>&)>& condition,
                  std::chrono::milliseconds timeout = std::chrono::seconds(20));
    // Asks for one discovery pass and measures it until its list arrived: wall seconds (negative on
    // timeout) and the CPU seconds the whole process spent meanwhile, which a busy machine disturbs less.
    struct PassTime {
        double wallSeconds = -1;
        double cpuSeconds = 0;
    };
    PassTime TimedPass();
    DeviceListWatcher& DeviceList() { return m_deviceList; }

    // Discovers the GigE Vision cameras with these serial numbers; their identifiers in the same
    // order, or nothing when one of them was not listed.
    std::vector<std::string> DiscoverGigeBySerial(const std::vector<std::string>& serials);

    // Streams an opened camera through StartGrab for `seconds` (after a short warm-up) with the
    // sink as its image and statistics listener; received frames are counted by the library's
    // own statistics, so frames the 30 ms display pacing drops still count.
    StreamWindow Stream(const std::string& cameraId, FrameSink& sink, double seconds);
    // The same in steps, for several cameras at once: BeginStream, wait, EndStream, then the
    // window between the first statistics publication after `warmUpEnd` and the last one.
    static bool BeginStream(const std::string& cameraId, FrameSink& sink);
    static void EndStream(const std::string& cameraId, FrameSink& sink);
    static StreamWindow WindowOf(const FrameSink& sink, double warmUpEnd);
    static constexpr double kWarmUpSeconds = 0.4;

    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;

private:
    LibrarySession();
    ~LibrarySession();

    unsigned long long m_mask = 0;
    DeviceListWatcher m_deviceList;
};

// Sleeps the calling thread.
void SleepSeconds(double seconds);

} // namespace Bench
