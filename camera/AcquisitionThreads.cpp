#include "camera/AcquisitionThreads.h"

#include <algorithm>
#include <chrono>

#include "ZylSdk.h"
#include "camera/AcquisitionStatistics.h"
#include "camera/RateRing.h"
#include "camera/SteadyClock.h"

namespace {
constexpr uint64_t deliveryPeriodMs = 30;
constexpr auto failedReadPause = std::chrono::milliseconds(5);
constexpr auto pollInterval = std::chrono::milliseconds(5);
constexpr auto drainPollInterval = std::chrono::milliseconds(10);
} // namespace

AcquisitionThreads::AcquisitionThreads(AcquisitionStatistics& statistics) : m_statistics(statistics) {}

AcquisitionThreads::~AcquisitionThreads()
{
    RequestExit();
    Join();
    ReleaseQueuedImages();
}

void AcquisitionThreads::StartOrResume(LoopThread& loop, std::function<void()> body, const std::function<void()>& wake)
{
    loop.pause.store(false);
    if (loop.thread.joinable()) {
        wake();
        return;
    }
    loop.exit.store(false);
    loop.thread = std::thread(std::move(body));
}

void AcquisitionThreads::Start(std::function<void()> grabBody, std::function<void()> deliveryBody)
{
    StartOrResume(m_grab, std::move(grabBody), [this] { WakeGrabThread(); });
    StartOrResume(m_delivery, std::move(deliveryBody), [this] { WakeDeliveryThread(); });
}

void AcquisitionThreads::Pause()
{
    m_grab.pause.store(true);
    m_delivery.pause.store(true);
    WakeGrabThread();
    WakeDeliveryThread();
    while (m_grab.active.load() || m_delivery.active.load())
        std::this_thread::sleep_for(pollInterval);
}

void AcquisitionThreads::RequestExit()
{
    for (LoopThread* loop : {&m_grab, &m_delivery}) {
        loop->exit.store(true);
        loop->pause.store(false);
    }
    m_grab.active.store(true);
    m_delivery.active.store(true);
    WakeGrabThread();
    WakeDeliveryThread();
}

void AcquisitionThreads::Join()
{
    for (LoopThread* loop : {&m_grab, &m_delivery}) {
        if (loop->thread.joinable())
            loop->thread.join();
    }
}

void AcquisitionThreads::WakeGrabThread()
{
    // Taking the mutex orders the flag store before the waiter's predicate test.
    {
        std::lock_guard<std::mutex> lock(m_grabWaitMutex);
    }
    m_grabCondition.notify_all();
}

void AcquisitionThreads::WakeDeliveryThread()
{
    {
        std::lock_guard<std::mutex> lock(m_queueMutex);
    }
    m_deliveryCondition.notify_all();
}

bool AcquisitionThreads::WaitForStart(LoopThread& loop, std::mutex& mutex, std::condition_variable& condition)
{
    if (loop.exit.load())
        return false;
    loop.active.store(false);
    {
        std::unique_lock<std::mutex> lock(mutex);
        condition.wait(lock, [&loop] { return !loop.pause.load(); });
    }
    loop.active.store(true);
    return !loop.exit.load();
}

bool AcquisitionThreads::WaitForGrabStart()
{
    return WaitForStart(m_grab, m_grabWaitMutex, m_grabCondition);
}

void AcquisitionThreads::PauseAfterFailedRead(int code)
{
    if (code != ZYLGENICAM::SDK_LOST) {
        std::this_thread::sleep_for(failedReadPause);
        return;
    }
    std::unique_lock<std::mutex> lock(m_grabWaitMutex);
    m_grabCondition.wait(lock, [this] { return GrabShouldPause(); });
}

void AcquisitionThreads::QueueImageKeepingNewest(ZYLGENICAM::IImage* image)
{
    {
        std::lock_guard<std::mutex> lock(m_queueMutex);
        if (m_queue.Size() >= 2) {
            if (ZYLGENICAM::IImage* oldest = m_queue.PopFront())
                oldest->Release();
        }
        m_queue.PushBack(image);
    }
    m_deliveryCondition.notify_one();
}

void AcquisitionThreads::QueueImage(ZYLGENICAM::IImage* image)
{
    {
        std::lock_guard<std::mutex> lock(m_queueMutex);
        m_queue.PushBack(image);
    }
    m_deliveryCondition.notify_one();
}

void AcquisitionThreads::WaitUntilDelivered()
{
    for (;;) {
        {
            std::lock_guard<std::mutex> lock(m_queueMutex);
            if (m_queue.Empty())
                return;
        }
        if (m_grab.exit.load())
            return;
        std::this_thread::sleep_for(drainPollInterval);
    }
}

void AcquisitionThreads::RunDeliveryLoop(const StyleSource& style, const Delivery& deliver)
{
    while (WaitForStart(m_delivery, m_queueMutex, m_deliveryCondition)) {
        RateRing ring(SteadyMilliseconds());
        for (;;) {
            ZYLGENICAM::IImage* image = nullptr;
            DeliveryStyle current{};
            {
                // Nothing is polled: a queued frame wakes the thread.
                std::unique_lock<std::mutex> lock(m_queueMutex);
                m_deliveryCondition.wait(lock, [this] { return m_delivery.ShouldPause() || !m_queue.Empty(); });
                if (m_delivery.ShouldPause())
                    break;
                current = style();
                image = current.takeOldest ? m_queue.PopFront() : m_queue.PopBack();
                if (!current.keepRest)
                    m_queue.ReleaseAll();
            }
            ring.CountNewest(1);
            // The frame now belongs to the host.
            deliver(image, current);
            if (!current.keepRest) {
                const uint64_t elapsed = SteadyMilliseconds() - ring.NewestTime();
                if (elapsed < deliveryPeriodMs)
                    std::this_thread::sleep_for(std::chrono::milliseconds(deliveryPeriodMs - elapsed));
            }
            const uint64_t now = SteadyMilliseconds();
            m_statistics.SetWorkingDisplayRate(std::min(static_cast<float>(ring.Rate(now)), m_statistics.FrameRate()));
            ring.Shift(now);
        }
        DeliveryStyle end = style();
        end.extra2 = 0;
        deliver(nullptr, end);
        ReleaseQueuedImages();
    }
}

void AcquisitionThreads::ReleaseQueuedImages()
{
    std::lock_guard<std::mutex> lock(m_queueMutex);
    m_queue.ReleaseAll();
}

std::size_t AcquisitionThreads::QueuedImageCount()
{
    std::lock_guard<std::mutex> lock(m_queueMutex);
    return m_queue.Size();
}
