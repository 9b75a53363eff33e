#include "FrameSink.h"

#include <cstdlib>
#include <utility>

#include "ViewerBiz3.h"
#include "ProcessStats.h"

namespace Bench {

FrameSink::FrameSink(std::string cameraId, std::size_t capacity) : m_cameraId(std::move(cameraId))
{
    m_frames.resize(capacity);
    m_frames.clear();
    m_statistics.resize(capacity);
    m_statistics.clear();
}

// Image listeners hear every camera and each one releases every frame it hears, as a host must;
// only its own camera's frames are recorded.
void FrameSink::OnImageUpdate(std::string cameraKey, void* image, int, int)
{
    if (image == nullptr)
        return;
    if (cameraKey != m_cameraId) {
        static_cast<ZYLGENICAM::IImage*>(image)->Release();
        return;
    }
    DeliveredFrame frame;
    frame.wallSeconds = WallSeconds();
    frame.realTimeNs = RealTimeNs();
    auto* sdkImage = static_cast<ZYLGENICAM::IImage*>(image);
    frame.frameId = sdkImage->GetFrameId();
    frame.timestampNs = sdkImage->GetTimestamp();
    if (m_readPixelAddress.load())
        frame.data = sdkImage->GetData();
    sdkImage->Release();
    m_delivered.fetch_add(1);
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_frames.size() < m_frames.capacity())
        m_frames.push_back(frame);
}

void FrameSink::OnAcqStatisticUpdate(std::string cameraKey, bool fromSetInfo)
{
    if (fromSetInfo || cameraKey != m_cameraId)
        return;
    StatisticsPublication publication;
    publication.wallSeconds = WallSeconds();
    publication.realTimeNs = RealTimeNs();
    publication.processCpuSeconds = ProcessCpuSeconds();
    if (m_readFrameCount.load())
        publication.frameCount =
            std::strtoull(ViewerBiz3::GetCameraInfo(m_cameraId, ViewerBiz3::CAM_FRAME_COUNT).c_str(), nullptr, 10);
    m_publications.fetch_add(1);
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_statistics.size() < m_statistics.capacity())
        m_statistics.push_back(publication);
}

void FrameSink::Clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_frames.clear();
    m_statistics.clear();
    m_delivered = 0;
    m_publications = 0;
}

std::vector<DeliveredFrame> FrameSink::Frames() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_frames;
}

std::vector<StatisticsPublication> FrameSink::StatisticsPublications() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_statistics;
}

} // namespace Bench
