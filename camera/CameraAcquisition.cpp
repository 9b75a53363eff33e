// The acquisition half of Camera: start and stop, and the grab and delivery threads.
#include <algorithm>

#include "camera/Camera.h"
#include "camera/CameraHost.h"
#include "camera/PayloadCalc.h"
#include "camera/RateRing.h"
#include "camera/SharedFramePool.h"
#include "log/Log.h"

namespace {
constexpr int notifyHost = 1;
constexpr uint64_t grabTimeoutMs = 300;
constexpr uint64_t publicationPeriodMs = 300;
constexpr uint64_t deliveryPeriodMs = 30;
constexpr int sdkTimeout = -11;
constexpr auto failedReadPause = std::chrono::milliseconds(5);
constexpr int sdkLost = -13;
constexpr auto stopDelay = std::chrono::milliseconds(50);
constexpr double bitsPerMegabit = 125000.0;
} // namespace

template <typename Body>
void Camera::StartAcquisitionThread(std::unique_ptr<std::thread>& thread, std::atomic<bool>& exitFlag,
                                    std::atomic<bool>& pauseFlag, std::atomic<bool>& exitedFlag, Body body)
{
    exitFlag.store(false);
    pauseFlag.store(false);
    exitedFlag.store(false);
    thread = std::make_unique<std::thread>([this, body, &exitedFlag] {
        (this->*body)();
        // Last access to this camera: closing waits for it.
        exitedFlag.store(true);
    });
    thread->detach();
}

int Camera::StartGrab(int mode, unsigned long long frameLimit)
{
    std::lock_guard<std::mutex> lock(m_stateMutex);
    const std::string name = GetName();
    if (m_grabbing.load()) {
        Utilities::LogInfo(name, "Failed to start grab. The camera is grabbing.", notifyHost);
        return -1;
    }
    m_frameLimit.store(frameLimit);
    ZYLGENICAM::ICamera* sdkCamera = m_camera.load();
    const int result = sdkCamera ? sdkCamera->StartGrabbing(mode, frameLimit) : -1;
    if (result != 0) {
        Utilities::LogError(name, "Failed to start grab, errorcode = " + std::to_string(result), notifyHost);
        return result;
    }
    m_grabbing.store(true);
    m_frameRate.store(0);
    m_bandwidth.store(0);
    if (m_grabThread) {
        m_grabPause.store(false);
        WakeGrabThread();
    } else {
        StartAcquisitionThread(m_grabThread, m_grabExit, m_grabPause, m_grabExited, &Camera::GrabImageFunction);
    }
    if (m_deliveryThread) {
        m_deliverPause.store(false);
        WakeDeliveryThread();
    } else {
        StartAcquisitionThread(m_deliveryThread, m_deliverExit, m_deliverPause, m_deliverExited,
                               &Camera::DeliverImageFunction);
    }
    Utilities::LogInfo(name, "Start grab image...", notifyHost);
    return 0;
}

int Camera::StopGrab(bool notify)
{
    std::lock_guard<std::mutex> lock(m_stateMutex);
    return StopGrabLocked(notify);
}

int Camera::StopGrabLocked(bool notify)
{
    if (!m_grabbing.load()) {
        if (notify)
            Utilities::LogInfo(GetName(), "Failed to stop grab.", notifyHost);
        return -1;
    }
    m_grabbing.store(false);
    m_grabPause.store(true);
    m_deliverPause.store(true);
    WakeGrabThread();
    WakeDeliveryThread();
    WaitUntil([this] { return !m_grabActive.load() && !m_deliverActive.load(); });
    ReleaseQueuedImages();
    if (ZYLGENICAM::ICamera* sdkCamera = m_camera.load())
        sdkCamera->StopGrabbing();
    if (notify) {
        if (CameraHost* host = GetCameraHost())
            host->NotifyDeviceListUpdate(GetListKey(), GetKey());
        Utilities::LogInfo(GetName(), "Stop grab image...", notifyHost);
    }
    return 0;
}

void Camera::StopGrabFromGrabThread()
{
    std::unique_lock<std::mutex> lock(m_stateMutex, std::defer_lock);
    if (LockStateUnlessExiting(lock, m_grabExit))
        StopGrabLocked(true);
}

int Camera::GrabImage(ZYLGENICAM::IImage*& image, unsigned long long timeoutMs)
{
    image = nullptr;
    ZYLGENICAM::ICamera* sdkCamera = m_camera.load();
    return sdkCamera ? sdkCamera->GetImage(image, timeoutMs) : -1;
}

void Camera::ClearImageList()
{
    m_imageList.ReleaseAll();
}

bool Camera::WaitForGrabStart()
{
    if (m_grabExit.load())
        return false;
    m_grabActive.store(false);
    {
        std::unique_lock<std::mutex> lock(m_grabWaitMutex);
        m_grabCondition.wait(lock, [this] { return !m_grabPause.load(); });
    }
    m_grabActive.store(true);
    return !m_grabExit.load();
}

bool Camera::WaitForDeliveryStart()
{
    if (m_deliverExit.load())
        return false;
    m_deliverActive.store(false);
    {
        std::unique_lock<std::mutex> lock(m_imageListMutex);
        m_deliveryCondition.wait(lock, [this] { return !m_deliverPause.load(); });
    }
    m_deliverActive.store(true);
    return !m_deliverExit.load();
}

// Exit counts as a pause too: closing may race a start that slipped in while it stopped.
bool Camera::GrabShouldPause() const
{
    return m_grabPause.load() || m_grabExit.load();
}

bool Camera::DeliveryShouldPause() const
{
    return m_deliverPause.load() || m_deliverExit.load();
}

bool Camera::IsGrabPauseSet() const
{
    return m_grabPause.load();
}

bool Camera::GrabShouldExit() const
{
    return m_grabExit.load();
}

void Camera::PauseAfterFailedRead(int code)
{
    if (code != sdkLost) {
        std::this_thread::sleep_for(failedReadPause);
        return;
    }
    std::unique_lock<std::mutex> lock(m_grabWaitMutex);
    m_grabCondition.wait(lock, [this] { return GrabShouldPause(); });
}

void Camera::MarkGrabInactive()
{
    m_grabActive.store(false);
}

void Camera::QueueImageKeepingNewest(ZYLGENICAM::IImage* image)
{
    {
        std::lock_guard<std::mutex> lock(m_imageListMutex);
        if (m_imageList.Size() >= 2) {
            if (ZYLGENICAM::IImage* oldest = m_imageList.PopFront())
                oldest->Release();
        }
        m_imageList.PushBack(image);
    }
    m_deliveryCondition.notify_one();
}

void Camera::QueueImage(ZYLGENICAM::IImage* image)
{
    {
        std::lock_guard<std::mutex> lock(m_imageListMutex);
        m_imageList.PushBack(image);
    }
    m_deliveryCondition.notify_one();
}

bool Camera::WaitForQueuedImage(std::unique_lock<std::mutex>& lock)
{
    m_deliveryCondition.wait(lock, [this] { return DeliveryShouldPause() || !m_imageList.Empty(); });
    return !DeliveryShouldPause();
}

void Camera::NotifyAcqStatistics()
{
    if (CameraHost* host = GetCameraHost())
        host->NotifyAcqStatisticUpdate(GetKey(), false);
}

void Camera::PublishStatistics(uint64_t frameCount, uint64_t errorCount, double frameRate, double bandwidth)
{
    m_frameCount.store(frameCount);
    m_errorCount.store(errorCount);
    m_frameRate.store(static_cast<float>(frameRate));
    m_bandwidth.store(static_cast<float>(bandwidth));
    m_displayRate.store(m_workingDisplayRate.load());
    NotifyAcqStatistics();
}

void Camera::PublishCounters(uint64_t frameCount, uint64_t errorCount)
{
    m_frameCount.store(frameCount);
    m_errorCount.store(errorCount);
    NotifyAcqStatistics();
}

void Camera::DeliverImage(ZYLGENICAM::IImage* image, int extra1, int extra2)
{
    CameraHost* host = GetCameraHost();
    if (!image) {
        if (host)
            host->NotifyImageUpdate(GetKey(), nullptr, extra1, extra2);
        return;
    }
    SharedFrame* frame = m_framePool->Take(image);
    frame->Settle(host ? host->NotifyImageUpdate(GetKey(), frame, extra1, extra2) : 0);
}

void Camera::EndDelivery(int extra1)
{
    DeliverImage(nullptr, extra1, 0);
    ReleaseQueuedImages();
}

void Camera::ReleaseQueuedImages()
{
    std::lock_guard<std::mutex> lock(m_imageListMutex);
    ClearImageList();
}

uint64_t Camera::PublishedFrameCount() const
{
    return m_frameCount.load();
}

float Camera::GetFrameRate() const
{
    return m_frameRate.load();
}

void Camera::SetWorkingDisplayRate(float rate)
{
    m_workingDisplayRate.store(rate);
}

void Camera::LogGrabFailure(int code, uint64_t frameId)
{
    Utilities::LogError(GetName(),
                        "Failed to get image, errorcode = " + std::to_string(code) + ", frameId = " +
                            std::to_string(frameId),
                        notifyHost);
}

uint64_t Camera::PayloadFromPixelFormat(ZYLGENICAM::IImage* image)
{
    unsigned long bitDepth = 0;
    unsigned long channels = 0;
    unsigned long payloadSize = 0;
    Utilities::PayloadCalc(static_cast<unsigned long>(image->GetWidth()), static_cast<unsigned long>(image->GetHeight()),
                           static_cast<unsigned long>(image->GetPixelFormat()), bitDepth, channels, payloadSize);
    return payloadSize;
}

void Camera::GrabImageFunction()
{
    RunGrabLoop({true, &PayloadFromPixelFormat});
}

void Camera::RunGrabLoop(const GrabLoopStyle& style)
{
    while (WaitForGrabStart()) {
        uint64_t previousId = 0;
        const uint64_t start = NowMs();
        RateRing ring(start);
        uint64_t frames = 0;
        // Frames the device sent, incomplete ones too: only these count towards the frame limit.
        uint64_t received = 0;
        uint64_t errors = 0;
        double rate = 0;
        double bandwidth = 0;
        m_workingDisplayRate.store(0);
        uint64_t lastPublication = start;
        PublishStatistics(frames, errors, rate, bandwidth);
        bool reportGap = true;
        for (;;) {
            ZYLGENICAM::IImage* image = nullptr;
            const int result = GrabImage(image, grabTimeoutMs);
            if (GrabShouldPause()) {
                if (image)
                    image->Release();
                break;
            }
            const uint64_t now = NowMs();
            uint64_t reportedId = style.checkFrameIds ? previousId : 0;
            if (image) {
                const uint64_t id = image->GetFrameId();
                if (style.checkFrameIds && id - previousId > 1 && reportGap) {
                    Utilities::LogInfo(GetName(),
                                       "The frame id increment is not 1, pre id = " + std::to_string(previousId) +
                                           ", current id = " + std::to_string(id),
                                       notifyHost);
                    reportGap = false;
                }
                previousId = id;
                reportedId = id;
            }
            uint64_t bytesPerFrame = 0;
            bool measurable = false;
            if (result != 0) {
                if (image)
                    image->Release();
                if (result == sdkTimeout) {
                    if (PublishedFrameCount() != frames)
                        PublishStatistics(frames, errors, rate, bandwidth);
                    continue;
                }
                ++errors;
                LogGrabFailure(result, reportedId);
                PauseAfterFailedRead(result);
            } else {
                // Sized before it is queued: once in the list the frame may already be delivered and released.
                measurable = image->IsValid() && image->GetHeight() != 0;
                if (measurable)
                    bytesPerFrame = style.bytesPerFrame(image);
                ring.CountNewest(1);
                QueueImageKeepingNewest(image);
            }
            ++frames;
            if (image)
                ++received;
            if (measurable) {
                rate = ring.Rate(now);
                bandwidth = rate * (static_cast<double>(bytesPerFrame) / bitsPerMegabit);
                ring.Shift(now);
            }
            const uint64_t frameLimit = m_frameLimit.load();
            if (now - lastPublication < publicationPeriodMs && received < frameLimit)
                continue;
            PublishStatistics(frames, errors, rate, bandwidth);
            lastPublication = now;
            reportGap = true;
            if (received >= frameLimit) {
                m_grabActive.store(false);
                std::this_thread::sleep_for(stopDelay);
                StopGrabFromGrabThread();
                break;
            }
        }
    }
}

void Camera::DeliverImageFunction()
{
    while (WaitForDeliveryStart()) {
        RateRing ring(NowMs());
        for (;;) {
            ZYLGENICAM::IImage* image = nullptr;
            {
                std::unique_lock<std::mutex> lock(m_imageListMutex);
                if (!WaitForQueuedImage(lock))
                    break;
                image = m_imageList.PopBack();
                ClearImageList();
            }
            ring.CountNewest(1);
            // The frame now belongs to the host.
            DeliverImage(image, 0, 0);
            const uint64_t elapsed = NowMs() - ring.NewestTime();
            if (elapsed < deliveryPeriodMs)
                std::this_thread::sleep_for(std::chrono::milliseconds(deliveryPeriodMs - elapsed));
            const uint64_t now = NowMs();
            m_workingDisplayRate.store(std::min(static_cast<float>(ring.Rate(now)), m_frameRate.load()));
            ring.Shift(now);
        }
        EndDelivery(0);
    }
}
