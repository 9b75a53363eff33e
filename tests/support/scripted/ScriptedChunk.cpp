#include "support/scripted/ScriptedChunk.h"

#include "support/scripted/ScriptedImage.h"

namespace Scripted {

ScriptedChunk::ScriptedChunk(ScriptedImage& image, uint64_t id, uint64_t size) : m_image(image), m_id(id), m_size(size)
{
}

ScriptedChunk::~ScriptedChunk() = default;

uint64_t ScriptedChunk::GetChunkSize()
{
    m_image.CheckOut("IChunk::GetChunkSize");
    return m_size;
}

uint64_t ScriptedChunk::GetChunkId()
{
    m_image.CheckOut("IChunk::GetChunkId");
    return m_id;
}

const void* ScriptedChunk::GetChunkData()
{
    if (!m_image.CheckOut("IChunk::GetChunkData")) {
        return nullptr;
    }
    std::call_once(m_dataAllocated, [this] { m_data.assign(m_size, 0); });
    return m_data.data();
}

} // namespace Scripted
