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

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

namespace ZYLGENICAM {

class LostDeviceTeardown {
public:
    static LostDeviceTeardown& Instance();

    // Drops this reference, an object of the named device, on the worker, which starts when
    // needed and ends once idle.
    void Add(std::shared_ptr<void> doomed, std::string device = {});
    // Returns once every reference handed over is dropped.
    void Drain();
    // Returns once nothing of the named device is left to drop, or after the timeout: a device
    // that answers again must not be opened while its old objects still stop its stream and give
    // up its control. False on timeout.
    bool WaitUntilLetGo(const std::string& device, std::chrono::milliseconds timeout);

    LostDeviceTeardown(const LostDeviceTeardown&) = delete;
    LostDeviceTeardown& operator=(const LostDeviceTeardown&) = delete;

private:
    LostDeviceTeardown() = default;
    ~LostDeviceTeardown() = delete;

    struct Doomed {
        std::shared_ptr<void> object;
        std::string device;
    };

    void Run();
    bool HoldsObjectOf(const std::string& device) const;

    std::mutex m_mutex;
    // Signalled after each object dropped and when the worker ends.
    std::condition_variable m_progress;
    std::deque<Doomed> m_doomed;
    bool m_dropping = false;
    std::string m_droppingDevice;
    bool m_workerRunning = false;
};

} // namespace ZYLGENICAM
