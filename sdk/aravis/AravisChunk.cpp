#include "sdk/aravis/AravisChunk.h"

#include <algorithm>

#include "sdk/aravis/BigEndian.h"

namespace ZYLGENICAM {

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
