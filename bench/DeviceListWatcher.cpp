#include "DeviceListWatcher.h"

#include <utility>

namespace Bench {

void DeviceListWatcher::OnDeviceListUpdate(int kind, std::vector<std::string>, std::vector<std::string> second)
{
    if (kind != 0)
        return;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_passes;
        m_cameras = std::move(second);
    }
    m_changed.notify_all();
}

uint64_t DeviceListWatcher::Passes() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_passes;
}

bool DeviceListWatcher::WaitForPassAfter(uint64_t passes, std::chrono::milliseconds timeout)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return m_passes > passes; });
}

bool DeviceListWatcher::WaitForList(const std::function<bool(const std::vector<std::string>&)>& condition,
                                    std::chrono::milliseconds timeout)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return m_passes > 0 && condition(m_cameras); });
}

void DeviceListWatcher::WaitUntilQuiet(std::chrono::milliseconds quiet)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    uint64_t seen = m_passes;
    while (m_changed.wait_for(lock, quiet, [&] { return m_passes != seen; }))
        seen = m_passes;
}

std::vector<std::string> DeviceListWatcher::Cameras() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_cameras;
}

} // namespace Bench
