#include "GrabMonitor.h"

#include <utility>

GrabMonitor::GrabMonitor(std::string cameraId) : m_cameraId(std::move(cameraId)) {}

void GrabMonitor::OnImageUpdate(std::string cameraKey, void* image, int /*extra1*/, int /*extra2*/)
{
    if (image == nullptr) {
        return; // sent when acquisition stops: nothing to release
    }
    auto* frame = static_cast<ZYLGENICAM::IImage*>(image);
    if (cameraKey == m_cameraId && frame->IsValid()) {
        const auto* pixels = static_cast<const unsigned char*>(frame->GetData());
        const std::uint64_t size = frame->GetDataSize();
        std::lock_guard<std::mutex> lock(m_mutex);
        m_lastFrame.width = frame->GetWidth();
        m_lastFrame.height = frame->GetHeight();
        m_lastFrame.pixelFormat = frame->GetPixelFormat();
        m_lastFrame.frameId = frame->GetFrameId();
        m_lastFrame.data.assign(pixels, pixels + (pixels != nullptr ? size : 0));
        m_hasFrame = true;
        ++m_deliveredFrames;
    }
    frame->Release();
}

void GrabMonitor::OnAcqStatisticUpdate(std::string /*cameraName*/, bool /*fromSetInfo*/)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_statisticsEvents;
    }
    m_statisticsChanged.notify_one();
}

void GrabMonitor::WaitForStatistics(std::chrono::milliseconds timeout)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_statisticsChanged.wait_for(lock, timeout, [this] { return m_statisticsEvents != m_statisticsSeen; });
    m_statisticsSeen = m_statisticsEvents;
}

std::uint64_t GrabMonitor::DeliveredFrames()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_deliveredFrames;
}

bool GrabMonitor::CopyLastFrame(Frame& frame)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_hasFrame) {
        return false;
    }
    frame = m_lastFrame;
    return true;
}
