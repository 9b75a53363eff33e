#include "sdk/aravis/AravisChunk.h"

#include <algorithm>

namespace ZYLGENICAM {

namespace {

uint32_t ReadBigEndian32(const uint8_t* bytes)
{
    return (uint32_t(bytes[0]) << 24) | (uint32_t(bytes[1]) << 16) | (uint32_t(bytes[2]) << 8) | uint32_t(bytes[3]);
}

void WriteBigEndian32(uint8_t* bytes, uint32_t value)
{
    bytes[0] = uint8_t(value >> 24);
    bytes[1] = uint8_t(value >> 16);
    bytes[2] = uint8_t(value >> 8);
    bytes[3] = uint8_t(value);
}

} // namespace

std::vector<AravisChunk> AravisChunk::Parse(const uint8_t* data, std::size_t size)
{
    std::vector<AravisChunk> chunks;
    if (data == nullptr)
        return chunks;
    std::size_t end = size;
    while (end > 0) {
        if (end < kTrailerSize)
            return {};
        const uint8_t* trailer = data + end - kTrailerSize;
        uint32_t id = ReadBigEndian32(trailer);
        uint32_t length = ReadBigEndian32(trailer + 4);
        if (length > end - kTrailerSize)
            return {};
        std::size_t start = end - kTrailerSize - length;
        chunks.emplace_back(id, data + start, length);
        end = start;
    }
    std::reverse(chunks.begin(), chunks.end());
    return chunks;
}

void AravisChunk::WriteTrailer(uint8_t* out, uint32_t id, uint32_t length)
{
    WriteBigEndian32(out, id);
    WriteBigEndian32(out + 4, length);
}

} // namespace ZYLGENICAM
