// The host side of the frame path in the benchmarks: an image listener that releases
// every frame at once and a statistics listener for one camera, both noting when things
// arrived. Records go into room reserved and touched up front, so listening neither allocates
// nor grows resident memory (the soak measures both).
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "ViewerBiz3Listeners.h"

namespace Bench {

struct DeliveredFrame {
    double wallSeconds = 0; // steady clock at the callback
    int64_t realTimeNs = 0; // wall clock at the callback
    uint64_t frameId = 0;
    uint64_t timestampNs = 0;   // the SDK's stamp of the frame
    const void* data = nullptr; // the pixels as the host got them
};

struct StatisticsPublication {
    double wallSeconds = 0;
    int64_t realTimeNs = 0;
    double processCpuSeconds = 0;
    uint64_t frameCount = 0; // CAM_INFO frame count read in the callback (when asked for)
};

class FrameSink : public ViewerBiz3::IImageUpdate, public ViewerBiz3::IAcqStatisticUpdate {
public:
    explicit FrameSink(std::string cameraId, std::size_t capacity = 1 << 16);

    void OnImageUpdate(std::string cameraKey, void* image, int extra1, int extra2) override;
    void OnAcqStatisticUpdate(std::string cameraName, bool fromSetInfo) override;

    // Reading the frame count costs a lookup and string copies, so it is off unless a
    // benchmark needs to match publications to frames.
    void SetReadFrameCount(bool read) { m_readFrameCount = read; }
    // On unless turned off: the scripted SDK makes an image's pixels at the first request, so
    // a benchmark that counts allocations turns this off not to count the SDK's as the library's.
    void SetReadPixelAddress(bool read) { m_readPixelAddress = read; }
    void Clear();

    uint64_t Delivered() const { return m_delivered.load(); }
    uint64_t Publications() const { return m_publications.load(); }
    std::vector<DeliveredFrame> Frames() const;
    std::vector<StatisticsPublication> StatisticsPublications() const;

private:
    std::string m_cameraId;
    std::atomic<bool> m_readFrameCount{false};
    std::atomic<bool> m_readPixelAddress{true};
    std::atomic<uint64_t> m_delivered{0};
    std::atomic<uint64_t> m_publications{0};
    mutable std::mutex m_mutex;
    std::vector<DeliveredFrame> m_frames;
    std::vector<StatisticsPublication> m_statistics;
};

} // namespace Bench
