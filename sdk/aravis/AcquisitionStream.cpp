#include "sdk/aravis/AcquisitionStream.h"

#include "sdk/aravis/FrameBufferInfo.h"
#include "sdk/aravis/LostDeviceTeardown.h"

namespace ZYLGENICAM {

namespace {

constexpr uint64_t kSixteenBitIdSpan = 65535; // ids 1..65535; 0 is never sent
constexpr uint64_t kWrapDetectionGap = 32768;

void DeleteFrameBufferInfo(void* info)
{
    delete static_cast<FrameBufferInfo*>(info);
}

} // namespace

std::shared_ptr<AcquisitionStream> AcquisitionStream::Create(ArvStream* stream, std::size_t bufferSize,
                                                             unsigned poolSize)
{
    return std::shared_ptr<AcquisitionStream>(new AcquisitionStream(stream, bufferSize, poolSize), Destroy);
}

void AcquisitionStream::Destroy(AcquisitionStream* stream)
{
    if (!stream->m_deviceLost.load()) {
        delete stream;
        return;
    }
    std::string key = stream->m_teardownKey;
    LostDeviceTeardown::Instance().Add(std::shared_ptr<AcquisitionStream>(stream), std::move(key));
}

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

void AcquisitionStream::MarkDeviceLost(std::string teardownKey)
{
    if (m_deviceLost.load())
        return;
    m_teardownKey = std::move(teardownKey);
    m_deviceLost.store(true);
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
