#include "FrameDecoder.h"

#include <iterator>

#include "PixelConverter.h"

namespace {

std::uint32_t BigEndian32(const unsigned char* bytes)
{
    return std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 | bytes[3];
}

RawPicture PictureOf(ZYLGENICAM::IImage& image)
{
    RawPicture picture;
    picture.data = static_cast<const unsigned char*>(image.GetData());
    picture.size = image.GetDataSize();
    picture.width = static_cast<int>(image.GetWidth());
    picture.height = static_cast<int>(image.GetHeight());
    picture.format = image.GetPixelFormat();
    return picture;
}

// The header chunk holds the frame id, the profile count and the depth in
// bits (big-endian, at bytes 0, 8 and 12); the data chunk holds the profiles,
// 16-bit heights or 32-bit heights with 8 fraction bits. The newest profile is kept.
bool DecodeProfiles(ZYLGENICAM::IImage& image, DisplayFrame& frame)
{
    const std::list<ZYLGENICAM::IChunk*> chunks = image.GetChunkList();
    if (chunks.size() < 2) {
        return false;
    }
    ZYLGENICAM::IChunk* header = chunks.front();
    ZYLGENICAM::IChunk* data = *std::next(chunks.begin());
    std::uint32_t profiles = 1;
    std::uint32_t depthBits = 16;
    if (header->GetChunkSize() >= 16 && header->GetChunkData() != nullptr) {
        const auto* bytes = static_cast<const unsigned char*>(header->GetChunkData());
        profiles = std::max<std::uint32_t>(1, BigEndian32(bytes + 8));
        depthBits = BigEndian32(bytes + 12) == 32 ? 32 : 16;
    }
    const std::size_t profileBytes = data->GetChunkSize() / profiles;
    const std::size_t points = profileBytes / (depthBits / 8);
    if (points == 0 || data->GetChunkData() == nullptr) {
        return false;
    }
    const auto* newest = static_cast<const unsigned char*>(data->GetChunkData()) + (profiles - 1) * profileBytes;
    frame.profile.resize(static_cast<int>(points));
    for (std::size_t x = 0; x < points; ++x) {
        if (depthBits == 16) {
            frame.profile[int(x)] = reinterpret_cast<const std::uint16_t*>(newest)[x];
        } else {
            frame.profile[int(x)] = float(reinterpret_cast<const std::uint32_t*>(newest)[x]) / 256.0f;
        }
    }
    return true;
}

} // namespace

namespace FrameDecoder {

bool Decode(ZYLGENICAM::IImage& image, bool profileCamera, int imageMode, DisplayFrame& frame)
{
    if (!image.IsValid()) {
        return false;
    }
    frame.frameId = image.GetFrameId();
    frame.pixelFormat = image.GetPixelFormat();
    frame.imageMode = imageMode;
    if (!profileCamera) {
        return PixelConverter::Convert(PictureOf(image), frame);
    }
    if (imageMode == 0) {
        return PixelConverter::ConvertRange(PictureOf(image), frame);
    }
    return DecodeProfiles(image, frame);
}

} // namespace FrameDecoder
