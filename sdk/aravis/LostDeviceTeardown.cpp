#include "sdk/aravis/LostDeviceTeardown.h"

#include <thread>

namespace ZYLGENICAM {

LostDeviceTeardown& LostDeviceTeardown::Instance()
{
    static LostDeviceTeardown* const instance = new LostDeviceTeardown;
    return *instance;
}

void LostDeviceTeardown::Add(std::shared_ptr<void> doomed, std::string device)
{
    if (!doomed)
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_doomed.push_back({std::move(doomed), std::move(device)});
    if (m_workerRunning)
        return;
    m_workerRunning = true;
    std::thread([this] { Run(); }).detach();
}

void LostDeviceTeardown::Run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_doomed.empty()) {
        Doomed next = std::move(m_doomed.front());
        m_doomed.pop_front();
        m_dropping = true;
        m_droppingDevice = next.device;
        lock.unlock();
        next.object.reset();
        lock.lock();
        m_dropping = false;
        m_progress.notify_all();
    }
    m_workerRunning = false;
    m_progress.notify_all();
}

void LostDeviceTeardown::Drain()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_progress.wait(lock, [this] { return !m_workerRunning; });
}

bool LostDeviceTeardown::WaitUntilLetGo(const std::string& device, std::chrono::milliseconds timeout)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_progress.wait_for(lock, timeout, [&] { return !HoldsObjectOf(device); });
}

bool LostDeviceTeardown::HoldsObjectOf(const std::string& device) const
{
    if (m_dropping && m_droppingDevice == device)
        return true;
    for (const Doomed& doomed : m_doomed) {
        if (doomed.device == device)
            return true;
    }
    return false;
}

} // namespace ZYLGENICAM
