// The thread that watches an opened camera: it asks the device four times a second whether it
// still answers and, once it does not, hands over to the camera's loss handling on the same thread.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

class Watchdog {
public:
    Watchdog() = default;
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    // Runs body on a new thread unless one exists already; one that ended at a loss stays until stopped.
    void StartIfAbsent(std::function<void()> body);
    // Tells the thread to stop; closing signals every thread before it waits for any.
    void RequestStop();
    // Waits until the thread no longer touches the camera, then joins it. A thread that handed the
    // camera over at a loss, or the caller itself, is let go instead: the host may delete the camera
    // from that thread, or hold what the thread waits for while it closes the camera.
    void Finish();
    void Stop();

    // Body side: true once the device stopped answering, false when told to stop (running cleared).
    bool WatchUntilLost(const std::function<bool()>& isOnline);
    // Body side, at a loss: the last access to the camera before the host hears of it.
    void HandOver();

    bool IsRunning() const { return m_running.load(); }
    const std::atomic<bool>& StopFlag() const { return m_stop; }

private:
    void ClearRunning();

    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_running{false};
    std::atomic<bool> m_handedOver{false};
    std::mutex m_mutex;
    // Wakes the one-second pause on stop, and the closer once running is cleared.
    std::condition_variable m_condition;
    std::thread m_thread;
};
