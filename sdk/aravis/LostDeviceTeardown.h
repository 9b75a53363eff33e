// Lets go of the Aravis objects of lost devices on a worker thread. Aravis's teardown of a stream
// or a GigE Vision device still talks to the device (stop streaming, give up control), and each of
// those transactions to a device that no longer answers retries for seconds (about 8 s for a
// killed GigE Vision camera, with no timeout to shorten it): done on a host, watchdog or discovery
// thread it would hold up closing, shutdown, loss handling and the next device-list refresh.
//
// So nobody waits for the worker unless asked to: it is detached, and accounted for by its running
// flag. The object is never destroyed, so a worker still busy when the process ends touches
// nothing that is gone, and a host quitting right after a cable pull does not wait for it.
#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

namespace ZYLGENICAM {

class LostDeviceTeardown {
public:
    static LostDeviceTeardown& Instance();

    // Drops this reference on the worker, which starts when needed and ends once idle.
    void Add(std::shared_ptr<void> doomed);
    // Returns once every reference handed over is dropped.
    void Drain();

    LostDeviceTeardown(const LostDeviceTeardown&) = delete;
    LostDeviceTeardown& operator=(const LostDeviceTeardown&) = delete;

private:
    LostDeviceTeardown() = default;
    ~LostDeviceTeardown() = delete;

    void Run();

    std::mutex m_mutex;
    std::condition_variable m_idle;
    std::deque<std::shared_ptr<void>> m_doomed;
    bool m_workerRunning = false;
};

} // namespace ZYLGENICAM
