#include "RawSdkStream.h"

#include <cstdint>

#include "ProcessStats.h"

namespace Bench {

namespace {

constexpr uint64_t kTimeoutMs = 300;
constexpr double kWarmUpSeconds = 0.2;
constexpr int kExclusiveAccess = 1;

// One GetImage and the release of what it gave; true when a frame came.
bool TakeFrame(ZYLGENICAM::ICamera* camera)
{
    ZYLGENICAM::IImage* image = nullptr;
    int result = camera->GetImage(image, kTimeoutMs);
    if (image != nullptr)
        image->Release();
    return result == ZYLGENICAM::SDK_OK;
}

} // namespace

RawSdkStream::RawSdkStream(const std::string& serialNumber, uint64_t tlMask)
{
    for (auto* record : ZYLGENICAM::DiscoveryByTLType(tlMask)) {
        if (m_camera == nullptr && serialNumber == record->GetSerialNumber())
            m_camera = ZYLGENICAM::CreateCamera(record);
        record->Destroy();
    }
    if (m_camera == nullptr)
        return;
    if (m_camera->Open(kExclusiveAccess) != ZYLGENICAM::SDK_OK ||
        m_camera->StartGrabbing(0, UINT64_MAX) != ZYLGENICAM::SDK_OK) {
        m_camera->Destroy();
        m_camera = nullptr;
    }
}

RawSdkStream::~RawSdkStream()
{
    if (m_camera == nullptr)
        return;
    m_camera->StopGrabbing();
    m_camera->Close();
    m_camera->Destroy();
}

StreamWindow RawSdkStream::RunSeconds(double seconds)
{
    StreamWindow window;
    if (m_camera == nullptr)
        return window;
    double warmUpEnd = WallSeconds() + kWarmUpSeconds;
    while (WallSeconds() < warmUpEnd)
        TakeFrame(m_camera);
    AllocationTotals allocationsBefore = AllocationCounter::Totals();
    double start = WallSeconds();
    double cpuStart = ProcessCpuSeconds();
    double end = start + seconds;
    // The clock is read once per batch so that reading it does not weigh on the figure.
    constexpr int kBatch = 256;
    while (WallSeconds() < end) {
        for (int i = 0; i < kBatch; ++i)
            window.framesReceived += TakeFrame(m_camera) ? 1 : 0;
    }
    window.wallSeconds = WallSeconds() - start;
    window.cpuSeconds = ProcessCpuSeconds() - cpuStart;
    window.allocations = AllocationCounter::Totals() - allocationsBefore;
    window.framesProduced = static_cast<double>(window.framesReceived);
    return window;
}

uint64_t RawSdkStream::DrainFrames(uint64_t frames)
{
    uint64_t taken = 0;
    while (m_camera != nullptr && taken < frames && TakeFrame(m_camera))
        ++taken;
    return taken;
}

} // namespace Bench
