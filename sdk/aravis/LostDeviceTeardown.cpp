#include "sdk/aravis/LostDeviceTeardown.h"

namespace ZYLGENICAM {

LostDeviceTeardown& LostDeviceTeardown::Instance()
{
    static LostDeviceTeardown instance;
    return instance;
}

LostDeviceTeardown::~LostDeviceTeardown()
{
    Drain();
}

void LostDeviceTeardown::Add(std::shared_ptr<void> doomed)
{
    if (!doomed)
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_doomed.push_back(std::move(doomed));
    if (m_workerRunning)
        return;
    // A worker that ended on its own is joined here; it touches nothing after clearing its flag.
    if (m_worker.joinable())
        m_worker.join();
    m_workerRunning = true;
    m_worker = std::thread([this] { Run(); });
}

void LostDeviceTeardown::Run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_doomed.empty()) {
        std::shared_ptr<void> next = std::move(m_doomed.front());
        m_doomed.pop_front();
        lock.unlock();
        next.reset();
        lock.lock();
    }
    m_workerRunning = false;
    m_idle.notify_all();
}

void LostDeviceTeardown::Drain()
{
    std::thread finished;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_idle.wait(lock, [this] { return !m_workerRunning; });
        finished = std::move(m_worker);
    }
    if (finished.joinable())
        finished.join();
}

} // namespace ZYLGENICAM
