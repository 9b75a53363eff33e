#include "sdk/aravis/SimulatedFrameFiller.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "sdk/aravis/AravisChunk.h"
#include "sdk/aravis/FrameBufferInfo.h"
#include "sdk/aravis/SimulatedRegisters.h"

namespace ZYLGENICAM {

namespace {

constexpr std::size_t kHeightProfileLength = 4096;
constexpr std::size_t kFrameInfoChunkSize = 32;
constexpr std::size_t kProfileHeaderChunkSize = 16;

void WriteBigEndian(uint8_t* out, uint64_t value, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i) {
        out[i] = uint8_t(value);
        value >>= 8;
    }
}

void DeleteFiller(void* filler)
{
    delete static_cast<SimulatedFrameFiller*>(filler);
}

} // namespace

SimulatedFrameFiller::SimulatedFrameFiller(ArvFakeCamera* camera, SimulatedKind kind)
    : m_camera(camera), m_kind(kind), m_heightProfile(kHeightProfileLength)
{
    // A surface with two bumps over a slope, the way a profile sensor sees a part on a belt.
    const double pi = std::acos(-1.0);
    for (std::size_t x = 0; x < kHeightProfileLength; ++x) {
        double phase = 2.0 * pi * double(x) / double(kHeightProfileLength);
        double height = 20000.0 + 4000.0 * std::sin(2.0 * phase) +
                        8000.0 * std::exp(-std::pow((phase - pi) * 3.0, 2.0)) + 2000.0 * phase / pi;
        m_heightProfile[x] = uint16_t(std::clamp(height, 0.0, 65535.0));
    }
}

void SimulatedFrameFiller::Install(ArvFakeCamera* camera, SimulatedKind kind)
{
    auto* filler = new SimulatedFrameFiller(camera, kind);
    g_object_set_data_full(G_OBJECT(camera), "viewerbiz3-frame-filler", filler, DeleteFiller);
    arv_fake_camera_set_fill_pattern(camera, &SimulatedFrameFiller::Fill, filler);
}

void SimulatedFrameFiller::Fill(ArvBuffer* buffer, void* fillerData, guint32, guint32, ArvPixelFormat)
{
    auto* info = static_cast<FrameBufferInfo*>(const_cast<void*>(arv_buffer_get_user_data(buffer)));
    if (info == nullptr)
        return;
    info->Take();
    auto* filler = static_cast<SimulatedFrameFiller*>(fillerData);
    auto* data = static_cast<uint8_t*>(const_cast<void*>(arv_buffer_get_data(buffer, nullptr)));
    uint64_t frameId = arv_buffer_get_frame_id(buffer);
    std::size_t capacity = info->allocatedSize;
    info->simulatedChunks = false;
    switch (filler->m_kind) {
    case SimulatedKind::Area:
        info->simulatedSize = filler->FillRamp(data, capacity, frameId);
        break;
    case SimulatedKind::ShowMode:
        info->simulatedSize = filler->FillShowModeFrame(data, capacity, frameId);
        info->simulatedChunks = info->simulatedSize > 0;
        break;
    case SimulatedKind::Profile:
        if (filler->ProfileChunkMode()) {
            info->simulatedSize = filler->FillProfileChunks(data, capacity, frameId);
            info->simulatedChunks = info->simulatedSize > 0;
        } else {
            info->simulatedSize = filler->FillHeightImage(data, capacity, frameId);
        }
        break;
    }
    info->Hand();
}

uint32_t SimulatedFrameFiller::Register(uint32_t address) const
{
    guint32 value = 0;
    arv_fake_camera_read_register(m_camera, address, &value);
    return value;
}

// A diagonal ramp that moves with the frame id.
std::size_t SimulatedFrameFiller::FillRamp(uint8_t* data, std::size_t capacity, uint64_t frameId) const
{
    std::size_t bitsPerPixel = (Register(SimulatedRegisters::kPixelFormat) >> 16) & 0xff;
    std::size_t lineBytes = std::size_t(Register(SimulatedRegisters::kWidth)) * bitsPerPixel / 8;
    std::size_t height = Register(SimulatedRegisters::kHeight);
    if (lineBytes * height > capacity)
        return 0;
    for (std::size_t y = 0; y < height; ++y) {
        uint8_t* line = data + y * lineBytes;
        uint8_t start = uint8_t(y + frameId);
        for (std::size_t i = 0; i < lineBytes; ++i)
            line[i] = uint8_t(start + i);
    }
    return lineBytes * height;
}

std::size_t SimulatedFrameFiller::FillShowModeFrame(uint8_t* data, std::size_t capacity, uint64_t frameId) const
{
    std::size_t overhead = 2 * AravisChunk::kTrailerSize + kFrameInfoChunkSize;
    if (capacity < overhead)
        return 0;
    std::size_t imageSize = FillRamp(data, capacity - overhead, frameId);
    if (imageSize == 0)
        return 0;
    uint8_t* out = data + imageSize;
    AravisChunk::WriteTrailer(out, kImageChunkId, uint32_t(imageSize));
    out += AravisChunk::kTrailerSize;
    std::memset(out, 0, kFrameInfoChunkSize);
    WriteBigEndian(out, frameId, 8);
    WriteBigEndian(out + 8, Register(SimulatedRegisters::kWidth), 4);
    WriteBigEndian(out + 12, Register(SimulatedRegisters::kHeight), 4);
    out += kFrameInfoChunkSize;
    AravisChunk::WriteTrailer(out, kFrameInfoChunkId, uint32_t(kFrameInfoChunkSize));
    return imageSize + overhead;
}

bool SimulatedFrameFiller::ProfileChunkMode() const
{
    return Register(SimulatedRegisters::kEnableExtraction) != 0 &&
           Register(SimulatedRegisters::kEnableCalibration) != 0 && Register(SimulatedRegisters::kEnableImage) == 0;
}

void SimulatedFrameFiller::WriteProfile(uint8_t* out, uint32_t width, uint32_t depthBytes, uint64_t shift) const
{
    for (uint32_t x = 0; x < width; ++x) {
        uint16_t height = m_heightProfile[(x + shift) % kHeightProfileLength];
        if (depthBytes == 2) {
            std::memcpy(out + std::size_t(x) * 2, &height, 2);
        } else {
            uint32_t wide = uint32_t(height) << 8;
            std::memcpy(out + std::size_t(x) * 4, &wide, 4);
        }
    }
}

// Mode 0: a 16-bit image whose lines are successive profiles.
std::size_t SimulatedFrameFiller::FillHeightImage(uint8_t* data, std::size_t capacity, uint64_t frameId) const
{
    uint32_t width = Register(SimulatedRegisters::kWidth);
    uint32_t height = Register(SimulatedRegisters::kHeight);
    std::size_t size = std::size_t(width) * height * 2;
    if (size > capacity)
        return 0;
    for (uint32_t y = 0; y < height; ++y)
        WriteProfile(data + std::size_t(y) * width * 2, width, 2, frameId * 8 + y * 2);
    return size;
}

// Modes 1 and 2: a header chunk, then the profiles chunk (one profile, or a batch).
std::size_t SimulatedFrameFiller::FillProfileChunks(uint8_t* data, std::size_t capacity, uint64_t frameId) const
{
    uint32_t width = Register(SimulatedRegisters::kWidth);
    uint32_t depthBytes = Register(SimulatedRegisters::kDepthDataType) == 32 ? 4 : 2;
    std::size_t profileBytes = std::size_t(width) * depthBytes;
    std::size_t overhead = kProfileHeaderChunkSize + 2 * AravisChunk::kTrailerSize;
    if (profileBytes == 0 || capacity < overhead + profileBytes)
        return 0;
    std::size_t profiles = 1;
    if (Register(SimulatedRegisters::kBatchEnable) != 0)
        profiles = std::max<std::size_t>(1, Register(SimulatedRegisters::kBatchNumber));
    profiles = std::min(profiles, (capacity - overhead) / profileBytes);

    uint8_t* out = data;
    WriteBigEndian(out, frameId, 8);
    WriteBigEndian(out + 8, profiles, 4);
    WriteBigEndian(out + 12, depthBytes * 8, 4);
    out += kProfileHeaderChunkSize;
    AravisChunk::WriteTrailer(out, kProfileHeaderChunkId, uint32_t(kProfileHeaderChunkSize));
    out += AravisChunk::kTrailerSize;
    for (std::size_t p = 0; p < profiles; ++p)
        WriteProfile(out + p * profileBytes, width, depthBytes, frameId * 8 + p * 2);
    out += profiles * profileBytes;
    AravisChunk::WriteTrailer(out, kProfileDataChunkId, uint32_t(profiles * profileBytes));
    return overhead + profiles * profileBytes;
}

} // namespace ZYLGENICAM
