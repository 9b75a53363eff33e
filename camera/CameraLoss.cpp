// The part of Camera that notices a lost device and lets it go: the watchdog's body and the loss
// handling it runs once the device stops answering.
#include "camera/Camera.h"

#include "camera/CameraHost.h"
#include "camera/FrameGrabberCard.h"
#include "log/Log.h"

std::mutex onlineMutex;

namespace {
constexpr int notifyHost = 1;
const char* const virtualCameraPrefix = "Virtual camera-";
} // namespace

void Camera::StartWatchdogIfAbsent()
{
    m_watchdog.StartIfAbsent([this] { OnlineFunction(); });
}

void Camera::StopWatchdog()
{
    m_watchdog.Stop();
}

bool Camera::IsWatchdogRunning() const
{
    return m_watchdog.IsRunning();
}

void Camera::OnlineFunction()
{
    if (m_watchdog.WatchUntilLost([this] { return IsOnline(); }))
        HandleLoss();
}

bool Camera::LockStateUnlessExiting(std::unique_lock<std::mutex>& lock, const std::atomic<bool>& exitFlag)
{
    // Closing holds the state mutex while it waits for this thread: give up once told to exit.
    while (!lock.try_lock()) {
        if (exitFlag.load())
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void Camera::HandleLoss()
{
    Utilities::LogError(GetName(), "Camera is lost.", notifyHost);
    std::unique_lock<std::mutex> lostLock(onlineMutex);
    m_online.store(false);
    m_available.store(false);
    if (m_grabbing.load()) {
        std::unique_lock<std::mutex> stateLock(m_stateMutex, std::defer_lock);
        if (LockStateUnlessExiting(stateLock, m_watchdog.StopFlag()))
            StopGrabLocked(false);
    }
    ReleaseLostDevice();
    // Everything needed after RemoveOpenedCamera is read now: the host deletes a lost GigE or
    // USB camera inside that call, and handing over lets closing go on.
    const std::string key = GetKey();
    const bool cameraLink = IsKind(CameraKind::CameraLink);
    CameraHost* host = GetCameraHost();
    if (host)
        host->NotifyDeviceListUpdate(GetListKey(), key);
    m_watchdog.HandOver();
    if (host)
        host->RemoveOpenedCamera(key);
    if (cameraLink)
        BecomeVirtualPlaceholder();
}

// The device is let go at once rather than when this camera is deleted: should it answer again,
// discovery lists it and the host may open it anew, which the old handle, still holding control
// and a stream channel, would disturb.
void Camera::ReleaseLostDevice()
{
    ZYLGENICAM::ICamera* sdkCamera = m_camera.load();
    if (!sdkCamera)
        return;
    std::unique_lock<std::shared_mutex> nodeLock(m_nodeAccessMutex);
    m_featureNodeMap.store(nullptr);
    m_auxiliaryNodeMap.store(nullptr);
    sdkCamera->Close();
    m_lostDeviceReleased.store(true);
}

void Camera::BecomeVirtualPlaceholder()
{
    const std::string key = m_texts.BecomePlaceholder(virtualCameraPrefix);
    m_opened.store(false);
    m_available.store(false);
    if (FrameGrabberCard* card = m_card.load())
        card->SetCameraName(key);
    if (CameraHost* host = GetCameraHost()) {
        host->AddCLCamera(this);
        host->NotifyDeviceListUpdate();
    }
}
