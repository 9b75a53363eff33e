// The grab and delivery threads of one camera, the frames queued between them and the flags that
// park, wake and end them. The grab thread runs the camera kind's acquisition and queues frames;
// the delivery thread hands them to the host at most once per 30 ms, measures the display rate and
// sends the null image when the acquisition stops. Both threads are owned here and joined.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>

#include "ZylImage.h"
#include "camera/ImageQueue.h"

class AcquisitionStatistics;

// How a camera kind takes and hands over its queued frames.
struct DeliveryStyle {
    // The oldest queued frame rather than the newest.
    bool takeOldest;
    // Every queued frame is delivered in order, without pause (profile batches); otherwise the
    // frames not taken are dropped and deliveries are paced.
    bool keepRest;
    int extra1;
    int extra2;
};

class AcquisitionThreads {
public:
    // Read at each queued frame, under the queue lock.
    using StyleSource = std::function<DeliveryStyle()>;
    // Hands a frame to the host; a null frame says the acquisition stopped.
    using Delivery = std::function<void(ZYLGENICAM::IImage* image, const DeliveryStyle& style)>;

    explicit AcquisitionThreads(AcquisitionStatistics& statistics);
    ~AcquisitionThreads();
    AcquisitionThreads(const AcquisitionThreads&) = delete;
    AcquisitionThreads& operator=(const AcquisitionThreads&) = delete;

    // Starts both threads, or wakes the ones parked since the last stop.
    void Start(std::function<void()> grabBody, std::function<void()> deliveryBody);
    // Parks both loops and returns once neither works any more.
    void Pause();
    // Tells both threads to end; closing signals every thread before it waits for any.
    void RequestExit();
    // Waits for both threads to end.
    void Join();

    // ---- Grab thread ----
    // Parks until the next start; false when the thread must end.
    bool WaitForGrabStart();
    // Exit counts as a pause too: closing may race a start that slipped in while it stopped.
    bool GrabShouldPause() const { return m_grab.ShouldPause(); }
    bool IsGrabPauseSet() const { return m_grab.pause.load(); }
    const std::atomic<bool>& GrabExitFlag() const { return m_grab.exit; }
    void MarkGrabInactive() { m_grab.active.store(false); }
    // After a failed read. A device that is gone fails every read at once: the grab thread then
    // waits for the watchdog (or the host) to stop the grab rather than count failure upon failure.
    void PauseAfterFailedRead(int code);
    // Appends a frame, releasing the oldest one first when two are already waiting.
    void QueueImageKeepingNewest(ZYLGENICAM::IImage* image);
    // Appends a frame, dropping none.
    void QueueImage(ZYLGENICAM::IImage* image);
    // Returns once the delivery thread took every queued frame, or the grab must end.
    void WaitUntilDelivered();

    // ---- Delivery thread ----
    // The whole delivery thread: parks between acquisitions, delivers while one runs.
    void RunDeliveryLoop(const StyleSource& style, const Delivery& deliver);

    // Releases the frames still queued; a frame queued after the delivery thread ended its run, or
    // while it never got to run, is dropped here.
    void ReleaseQueuedImages();
    std::size_t QueuedImageCount();

private:
    // One of the two threads and its flags, sequentially consistent throughout.
    struct LoopThread {
        std::atomic<bool> exit{false};
        std::atomic<bool> pause{false};
        // Cleared while the loop is parked; stopping waits for it.
        std::atomic<bool> active{false};
        std::thread thread;

        bool ShouldPause() const { return pause.load() || exit.load(); }
    };

    // Starts the thread, or wakes it when it waits for the next start.
    static void StartOrResume(LoopThread& loop, std::function<void()> body, const std::function<void()>& wake);
    // Parks the loop until the next start; false when the thread must end.
    static bool WaitForStart(LoopThread& loop, std::mutex& mutex, std::condition_variable& condition);
    void WakeGrabThread();
    void WakeDeliveryThread();

    AcquisitionStatistics& m_statistics;
    LoopThread m_grab;
    LoopThread m_delivery;

    std::mutex m_grabWaitMutex;
    std::condition_variable m_grabCondition;
    std::mutex m_queueMutex;
    ImageQueue m_queue;
    std::condition_variable m_deliveryCondition;
};
