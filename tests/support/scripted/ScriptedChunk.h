// One chunk of a scripted frame: an id and a zero-filled payload of the scripted size.
#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "ZylImage.h"

namespace Scripted {

class ScriptedImage;

class ScriptedChunk final : public ZYLGENICAM::IChunk {
public:
    ScriptedChunk(ScriptedImage& image, uint64_t id, uint64_t size);
    ~ScriptedChunk();
    ScriptedChunk(const ScriptedChunk&) = delete;
    ScriptedChunk& operator=(const ScriptedChunk&) = delete;

    uint64_t GetChunkSize() override;
    uint64_t GetChunkId() override;
    const void* GetChunkData() override;

private:
    ScriptedImage& m_image;
    const uint64_t m_id;
    const uint64_t m_size;
    std::once_flag m_dataAllocated;
    std::vector<unsigned char> m_data;
};

} // namespace Scripted
