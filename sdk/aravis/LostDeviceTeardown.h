// Lets go of the Aravis objects of lost devices on a worker thread. Aravis's teardown of a stream
// or a GigE Vision device still talks to the device (stop streaming, give up control), and each of
// those transactions to a device that no longer answers retries for seconds: done on the watchdog
// or discovery thread it would hold up loss handling and the next device-list refresh.
#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace ZYLGENICAM {

class LostDeviceTeardown {
public:
    static LostDeviceTeardown& Instance();

    // Drops this reference on the worker, which starts when needed and ends once idle.
    void Add(std::shared_ptr<void> doomed);
    // Returns once every reference handed over is dropped and the worker has ended.
    void Drain();

    LostDeviceTeardown(const LostDeviceTeardown&) = delete;
    LostDeviceTeardown& operator=(const LostDeviceTeardown&) = delete;

private:
    LostDeviceTeardown() = default;
    ~LostDeviceTeardown();

    void Run();

    std::mutex m_mutex;
    std::condition_variable m_idle;
    std::deque<std::shared_ptr<void>> m_doomed;
    std::thread m_worker;
    bool m_workerRunning = false;
};

} // namespace ZYLGENICAM
