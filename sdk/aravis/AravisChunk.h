// One chunk of a frame laid out the GigE Vision way: each chunk's data is followed by a trailer of
// its id and its length (both 32-bit big-endian), so the layout is read backwards from the end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ZylImage.h"

namespace ZYLGENICAM {

class AravisChunk final : public IChunk {
public:
    AravisChunk(uint64_t id, const uint8_t* data, uint64_t size) : m_id(id), m_data(data), m_size(size) {}

    uint64_t GetChunkSize() override { return m_size; }
    uint64_t GetChunkId() override { return m_id; }
    const void* GetChunkData() override { return m_data; }

    // Chunks in frame order; empty when the bytes are not a complete chunk layout.
    static std::vector<AravisChunk> Parse(const uint8_t* data, std::size_t size);

    // Writes one chunk trailer at out (8 bytes).
    static void WriteTrailer(uint8_t* out, uint32_t id, uint32_t length);

    static constexpr std::size_t kTrailerSize = 8;

private:
    uint64_t m_id;
    const uint8_t* m_data;
    uint64_t m_size;
};

} // namespace ZYLGENICAM
