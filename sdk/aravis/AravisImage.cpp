#include "sdk/aravis/AravisImage.h"

#include "sdk/aravis/FrameBufferInfo.h"

#include <algorithm>

namespace ZYLGENICAM {

AravisImage::AravisImage(std::shared_ptr<AcquisitionStream> stream, ArvBuffer* buffer, uint64_t frameId)
    : m_stream(std::move(stream)), m_buffer(buffer), m_frameId(frameId)
{
    size_t receivedSize = 0;
    m_data = static_cast<const uint8_t*>(arv_buffer_get_data(buffer, &receivedSize));
    const auto* info = static_cast<const FrameBufferInfo*>(arv_buffer_get_user_data(buffer));
    if (info != nullptr)
        info->Take();
    bool hasChunks = false;
    if (info != nullptr && info->simulatedSize > 0) {
        m_size = info->simulatedSize;
        hasChunks = info->simulatedChunks;
    } else {
        m_size = receivedSize;
        hasChunks = arv_buffer_has_chunks(buffer);
    }
    if (hasChunks && arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS)
        m_chunks = AravisChunk::Parse(m_data, m_size);
}

bool AravisImage::IsValid()
{
    return arv_buffer_get_status(m_buffer) == ARV_BUFFER_STATUS_SUCCESS;
}

uint64_t AravisImage::GetWidth()
{
    return arv_buffer_get_n_parts(m_buffer) > 0 ? uint64_t(std::max(0, arv_buffer_get_part_width(m_buffer, 0))) : 0;
}

uint64_t AravisImage::GetHeight()
{
    return arv_buffer_get_n_parts(m_buffer) > 0 ? uint64_t(std::max(0, arv_buffer_get_part_height(m_buffer, 0))) : 0;
}

uint64_t AravisImage::GetPixelFormat()
{
    return arv_buffer_get_n_parts(m_buffer) > 0 ? uint64_t(arv_buffer_get_part_pixel_format(m_buffer, 0)) : 0;
}

std::list<IChunk*> AravisImage::GetChunkList()
{
    std::list<IChunk*> chunks;
    for (AravisChunk& chunk : m_chunks)
        chunks.push_back(&chunk);
    return chunks;
}

// With chunks, the image is the first chunk of the layout.
uint64_t AravisImage::GetDataSize()
{
    return m_chunks.empty() ? m_size : m_chunks.front().GetChunkSize();
}

uint64_t AravisImage::GetTimestamp()
{
    return arv_buffer_get_timestamp(m_buffer);
}

void AravisImage::Release()
{
    auto* info = static_cast<FrameBufferInfo*>(const_cast<void*>(arv_buffer_get_user_data(m_buffer)));
    if (info != nullptr)
        info->Hand();
    m_stream->Push(m_buffer);
    delete this;
}

} // namespace ZYLGENICAM
