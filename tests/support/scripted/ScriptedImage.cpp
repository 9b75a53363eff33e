#include "support/scripted/ScriptedImage.h"

#include "support/scripted/ScriptedChunk.h"
#include "support/scripted/ScriptedDevice.h"

namespace Scripted {

namespace {

// PFNC codes carry the bits per pixel in bits 16 to 23.
uint64_t BitsPerPixel(uint64_t pixelFormat)
{
    return (pixelFormat >> 16) & 0xFF;
}

} // namespace

ScriptedImage::ScriptedImage(ScriptedDevice& device, uint64_t handleId, const FrameStep& step)
    : m_device(device), m_handleId(handleId), m_step(step)
{
    uint64_t chunkId = 1;
    for (uint64_t size : m_step.chunkSizes) {
        m_chunks.push_back(std::make_unique<ScriptedChunk>(*this, chunkId++, size));
    }
}

ScriptedImage::~ScriptedImage() = default;

bool ScriptedImage::IsValid()
{
    return CheckOut("IImage::IsValid") && m_step.valid;
}

uint64_t ScriptedImage::GetFrameId()
{
    CheckOut("IImage::GetFrameId");
    return m_step.frameId;
}

uint64_t ScriptedImage::GetWidth()
{
    CheckOut("IImage::GetWidth");
    return m_step.width;
}

uint64_t ScriptedImage::GetHeight()
{
    CheckOut("IImage::GetHeight");
    return m_step.height;
}

uint64_t ScriptedImage::GetPixelFormat()
{
    CheckOut("IImage::GetPixelFormat");
    return m_step.pixelFormat;
}

std::list<ZYLGENICAM::IChunk*> ScriptedImage::GetChunkList()
{
    std::list<ZYLGENICAM::IChunk*> chunks;
    if (CheckOut("IImage::GetChunkList")) {
        for (const auto& chunk : m_chunks) {
            chunks.push_back(chunk.get());
        }
    }
    return chunks;
}

const void* ScriptedImage::GetData()
{
    if (!CheckOut("IImage::GetData")) {
        return nullptr;
    }
    std::call_once(m_dataAllocated, [this] { m_data.assign(GetDataSize(), 0); });
    return m_data.data();
}

uint64_t ScriptedImage::GetDataSize()
{
    CheckOut("IImage::GetDataSize");
    return m_step.width * m_step.height * BitsPerPixel(m_step.pixelFormat) / 8;
}

uint64_t ScriptedImage::GetTimestamp()
{
    CheckOut("IImage::GetTimestamp");
    return m_step.timestampNs;
}

void ScriptedImage::Release()
{
    m_device.Released(this, m_handleId);
}

bool ScriptedImage::MarkReleased()
{
    return !m_released.exchange(true);
}

void ScriptedImage::FreeBuffers()
{
    std::vector<unsigned char>().swap(m_data);
    m_chunks.clear();
}

bool ScriptedImage::CheckOut(const char* operation) const
{
    if (m_released.load()) {
        m_device.UsedAfterRelease(operation);
        return false;
    }
    return true;
}

} // namespace Scripted
