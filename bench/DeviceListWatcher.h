// Listens to whole-list notifications of the device manager and lets a benchmark wait
// for the next one, or for a list that satisfies a condition.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "ViewerBiz3Listeners.h"

namespace Bench {

class DeviceListWatcher : public ViewerBiz3::IDeviceListUpdate {
public:
    void OnDeviceListUpdate(int kind, std::vector<std::string> first, std::vector<std::string> second) override;

    // Number of whole-list notifications so far; a pass ends with one.
    uint64_t Passes() const;
    // Waits until more than `passes` notifications arrived; false on timeout.
    bool WaitForPassAfter(uint64_t passes, std::chrono::milliseconds timeout);
    // Waits for a published list that satisfies the condition; false on timeout.
    bool WaitForList(const std::function<bool(const std::vector<std::string>&)>& condition,
                     std::chrono::milliseconds timeout);
    // Waits until no pass has ended for `quiet` (a pass the library queued on its own has run).
    void WaitUntilQuiet(std::chrono::milliseconds quiet);
    std::vector<std::string> Cameras() const;

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    uint64_t m_passes = 0;
    std::vector<std::string> m_cameras;
};

} // namespace Bench
