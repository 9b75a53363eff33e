#include "camera/Watchdog.h"

#include <chrono>

namespace {
// A lost camera must be stopped, dropped and announced within about a second: the watchdog looks
// four times a second, and a look costs the device nothing while frames keep coming.
constexpr auto watchdogPeriod = std::chrono::milliseconds(250);
} // namespace

Watchdog::~Watchdog()
{
    Stop();
}

void Watchdog::StartIfAbsent(std::function<void()> body)
{
    if (m_thread.joinable())
        return;
    m_stop.store(false);
    m_handedOver.store(false);
    m_running.store(true);
    m_thread = std::thread(std::move(body));
}

void Watchdog::RequestStop()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stop.store(true);
    }
    m_condition.notify_all();
}

void Watchdog::Finish()
{
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_condition.wait(lock, [this] { return !m_running.load(); });
    }
    if (!m_thread.joinable())
        return;
    if (m_handedOver.load() || m_thread.get_id() == std::this_thread::get_id())
        m_thread.detach();
    else
        m_thread.join();
}

void Watchdog::Stop()
{
    RequestStop();
    Finish();
}

bool Watchdog::WatchUntilLost(const std::function<bool()>& isOnline)
{
    m_running.store(true);
    for (;;) {
        if (m_stop.load())
            break;
        if (!isOnline()) {
            if (!m_stop.load())
                return true;
            break;
        }
        std::unique_lock<std::mutex> lock(m_mutex);
        m_condition.wait_for(lock, watchdogPeriod, [this] { return m_stop.load(); });
    }
    ClearRunning();
    return false;
}

void Watchdog::HandOver()
{
    m_handedOver.store(true);
    ClearRunning();
}

void Watchdog::ClearRunning()
{
    // Notified under the lock: once the closer sees the flag it may destroy the watchdog, and with
    // it the condition, before a notification sent after unlocking would have returned.
    std::lock_guard<std::mutex> lock(m_mutex);
    m_running.store(false);
    m_condition.notify_all();
}
