// What an acquisition has counted so far, as the host reads it by CAM_INFO: frames, errors, frame
// rate, bandwidth and display rate. The grab loop publishes its counts here; the delivery loop
// measures the display rate, which the next publication makes visible.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "ViewerBiz3Types.h"

class AcquisitionStatistics {
public:
    // Everything back to 0, as after closing.
    void Reset();
    // A new acquisition starts without rates.
    void ClearRates();
    void Publish(uint64_t frameCount, uint64_t errorCount, double frameRate, double bandwidth);
    // Frame and error counters only; the rates keep their values.
    void PublishCounters(uint64_t frameCount, uint64_t errorCount);
    uint64_t FrameCount() const { return m_frameCount.load(); }
    float FrameRate() const { return m_frameRate.load(); }
    void SetWorkingDisplayRate(float rate) { m_workingDisplayRate.store(rate); }

    // The statistic under the number as text; false for a number that is no statistic.
    bool Format(ViewerBiz3::CAM_INFO info, std::string& text) const;

private:
    std::atomic<uint64_t> m_frameCount{0};
    std::atomic<uint64_t> m_errorCount{0};
    std::atomic<float> m_frameRate{0};
    std::atomic<float> m_bandwidth{0};
    std::atomic<float> m_displayRate{0};
    // Measured by the delivery loop between publications.
    std::atomic<float> m_workingDisplayRate{0};
};
