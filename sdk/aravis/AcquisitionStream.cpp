#include "sdk/aravis/AcquisitionStream.h"

#include "sdk/aravis/FrameBufferInfo.h"

namespace ZYLGENICAM {

namespace {

constexpr uint64_t kSixteenBitIdSpan = 65535; // ids 1..65535; 0 is never sent
constexpr uint64_t kWrapDetectionGap = 32768;

void DeleteFrameBufferInfo(void* info)
{
    delete static_cast<FrameBufferInfo*>(info);
}

} // namespace

AcquisitionStream::AcquisitionStream(ArvStream* stream, std::size_t bufferSize, unsigned poolSize) : m_stream(stream)
{
    for (unsigned i = 0; i < poolSize; ++i) {
        auto* info = new FrameBufferInfo(bufferSize);
        arv_stream_push_buffer(stream, arv_buffer_new_full(bufferSize, nullptr, info, DeleteFrameBufferInfo));
    }
}

ArvBuffer* AcquisitionStream::Pop(uint64_t timeoutMs)
{
    return arv_stream_timeout_pop_buffer(m_stream.get(), timeoutMs * 1000);
}

void AcquisitionStream::Push(ArvBuffer* buffer)
{
    arv_stream_push_buffer(m_stream.get(), buffer);
}

uint64_t AcquisitionStream::ContinuousFrameId(uint64_t deviceFrameId)
{
    std::lock_guard<std::mutex> lock(m_frameIdMutex);
    bool sixteenBit = deviceFrameId <= kSixteenBitIdSpan && m_previousDeviceId <= kSixteenBitIdSpan;
    if (m_hasPreviousId && sixteenBit && deviceFrameId < m_previousDeviceId &&
        m_previousDeviceId - deviceFrameId > kWrapDetectionGap)
        m_wrapOffset += kSixteenBitIdSpan;
    m_hasPreviousId = true;
    m_previousDeviceId = deviceFrameId;
    return m_wrapOffset + deviceFrameId;
}

} // namespace ZYLGENICAM
