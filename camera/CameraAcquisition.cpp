// The acquisition half of Camera: start and stop, the grab loop and what the delivery loop hands the host.
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
constexpr auto stopDelay = std::chrono::milliseconds(50);
constexpr double bitsPerMegabit = 125000.0;
} // namespace

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
    m_statistics.ClearRates();
    m_acquisition.Start([this] { GrabImageFunction(); }, [this] { DeliverImageFunction(); });
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
    m_acquisition.Pause();
    m_acquisition.ReleaseQueuedImages();
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
    if (LockStateUnlessExiting(lock, m_acquisition.GrabExitFlag()))
        StopGrabLocked(true);
}

void Camera::StopAtFrameLimit(bool deliverQueuedFirst)
{
    m_acquisition.MarkGrabInactive();
    if (deliverQueuedFirst)
        m_acquisition.WaitUntilDelivered();
    std::this_thread::sleep_for(stopDelay);
    StopGrabFromGrabThread();
}

int Camera::GrabImage(ZYLGENICAM::IImage*& image, unsigned long long timeoutMs)
{
    image = nullptr;
    ZYLGENICAM::ICamera* sdkCamera = m_camera.load();
    return sdkCamera ? sdkCamera->GetImage(image, timeoutMs) : -1;
}

void Camera::NotifyAcqStatistics()
{
    if (CameraHost* host = GetCameraHost())
        host->NotifyAcqStatisticUpdate(GetKey(), false);
}

void Camera::PublishStatistics(uint64_t frameCount, uint64_t errorCount, double frameRate, double bandwidth)
{
    m_statistics.Publish(frameCount, errorCount, frameRate, bandwidth);
    NotifyAcqStatistics();
}

void Camera::PublishCounters(uint64_t frameCount, uint64_t errorCount)
{
    m_statistics.PublishCounters(frameCount, errorCount);
    NotifyAcqStatistics();
}

DeliveryStyle Camera::CurrentDeliveryStyle()
{
    return {false, false, 0, 0};
}

void Camera::DeliverFrame(ZYLGENICAM::IImage* image, const DeliveryStyle& style)
{
    DeliverImage(image, style.extra1, style.extra2);
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

void Camera::LogGrabFailure(int code, uint64_t frameId)
{
    Utilities::LogError(GetName(),
                        "Failed to get image, errorcode = " + std::to_string(code) +
                            ", frameId = " + std::to_string(frameId),
                        notifyHost);
}

uint64_t Camera::PayloadFromPixelFormat(ZYLGENICAM::IImage* image)
{
    unsigned long bitDepth = 0;
    unsigned long channels = 0;
    unsigned long payloadSize = 0;
    Utilities::PayloadCalc(static_cast<unsigned long>(image->GetWidth()),
                           static_cast<unsigned long>(image->GetHeight()),
                           static_cast<unsigned long>(image->GetPixelFormat()), bitDepth, channels, payloadSize);
    return payloadSize;
}

void Camera::GrabImageFunction()
{
    RunGrabLoop({true, &PayloadFromPixelFormat});
}

void Camera::DeliverImageFunction()
{
    m_acquisition.RunDeliveryLoop(
        [this] { return CurrentDeliveryStyle(); },
        [this](ZYLGENICAM::IImage* image, const DeliveryStyle& style) { DeliverFrame(image, style); });
}

void Camera::RunGrabLoop(const GrabLoopStyle& style)
{
    while (m_acquisition.WaitForGrabStart()) {
        uint64_t previousId = 0;
        const uint64_t start = NowMs();
        RateRing ring(start);
        uint64_t frames = 0;
        // Frames the device sent, incomplete ones too: only these count towards the frame limit.
        uint64_t received = 0;
        uint64_t errors = 0;
        double rate = 0;
        double bandwidth = 0;
        m_statistics.SetWorkingDisplayRate(0);
        uint64_t lastPublication = start;
        PublishStatistics(frames, errors, rate, bandwidth);
        bool reportGap = true;
        for (;;) {
            ZYLGENICAM::IImage* image = nullptr;
            const int result = GrabImage(image, grabTimeoutMs);
            if (m_acquisition.GrabShouldPause()) {
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
            if (result != ZYLGENICAM::SDK_OK) {
                if (image)
                    image->Release();
                if (result == ZYLGENICAM::SDK_TIMEOUT) {
                    if (m_statistics.FrameCount() != frames)
                        PublishStatistics(frames, errors, rate, bandwidth);
                    continue;
                }
                ++errors;
                LogGrabFailure(result, reportedId);
                m_acquisition.PauseAfterFailedRead(result);
            } else {
                // Sized before it is queued: once in the list the frame may already be delivered and released.
                measurable = image->IsValid() && image->GetHeight() != 0;
                if (measurable)
                    bytesPerFrame = style.bytesPerFrame(image);
                ring.CountNewest(1);
                m_acquisition.QueueImageKeepingNewest(image);
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
                StopAtFrameLimit(false);
                break;
            }
        }
    }
}
