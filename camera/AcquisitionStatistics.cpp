#include "camera/AcquisitionStatistics.h"

#include "node/NodeAccess.h"

void AcquisitionStatistics::Reset()
{
    m_frameCount.store(0);
    m_frameRate.store(0);
    m_bandwidth.store(0);
    m_errorCount.store(0);
    m_displayRate.store(0);
}

void AcquisitionStatistics::ClearRates()
{
    m_frameRate.store(0);
    m_bandwidth.store(0);
}

void AcquisitionStatistics::Publish(uint64_t frameCount, uint64_t errorCount, double frameRate, double bandwidth)
{
    m_frameCount.store(frameCount);
    m_errorCount.store(errorCount);
    m_frameRate.store(static_cast<float>(frameRate));
    m_bandwidth.store(static_cast<float>(bandwidth));
    m_displayRate.store(m_workingDisplayRate.load());
}

void AcquisitionStatistics::PublishCounters(uint64_t frameCount, uint64_t errorCount)
{
    m_frameCount.store(frameCount);
    m_errorCount.store(errorCount);
}

bool AcquisitionStatistics::Format(ViewerBiz3::CAM_INFO info, std::string& text) const
{
    const auto withThreeDecimals = [](float value) { return Utilities::ToStringWithPrecision(value, 3); };
    switch (info) {
    case ViewerBiz3::CAM_FRAME_COUNT:
        text = std::to_string(m_frameCount.load());
        return true;
    case ViewerBiz3::CAM_ERROR_COUNT:
        text = std::to_string(m_errorCount.load());
        return true;
    case ViewerBiz3::CAM_FRAME_RATE:
        text = withThreeDecimals(m_frameRate.load());
        return true;
    case ViewerBiz3::CAM_BANDWIDTH:
        text = withThreeDecimals(m_bandwidth.load());
        return true;
    case ViewerBiz3::CAM_DISPLAY_RATE:
        text = withThreeDecimals(m_displayRate.load());
        return true;
    // Counters the SDK reports nothing for: they stay 0.
    case ViewerBiz3::CAM_STAT14:
    case ViewerBiz3::CAM_STAT15:
    case ViewerBiz3::CAM_STAT16:
    case ViewerBiz3::CAM_STAT18:
    case ViewerBiz3::CAM_STAT19:
    case ViewerBiz3::CAM_STAT20:
    case ViewerBiz3::CAM_STAT21:
        text = "0";
        return true;
    default:
        return false;
    }
}
