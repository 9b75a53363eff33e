#include "sdk/aravis/LostDeviceTeardown.h"

#include <thread>

namespace ZYLGENICAM {

LostDeviceTeardown& LostDeviceTeardown::Instance()
{
    static LostDeviceTeardown* const instance = new LostDeviceTeardown;
    return *instance;
}

void LostDeviceTeardown::Add(std::shared_ptr<void> doomed)
{
    if (!doomed)
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_doomed.push_back(std::move(doomed));
    if (m_workerRunning)
        return;
    m_workerRunning = true;
    std::thread([this] { Run(); }).detach();
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
    std::unique_lock<std::mutex> lock(m_mutex);
    m_idle.wait(lock, [this] { return !m_workerRunning; });
}

} // namespace ZYLGENICAM
