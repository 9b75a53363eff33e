// Fills the frames of one simulated camera (the fake camera's fill callback). It writes the image
// and, where the camera sends them, the chunks in the GigE Vision layout, and records in the
// buffer's FrameBufferInfo how many bytes it wrote. Kept cheap so small frames stream fast.
#pragma once

#include <arv.h>

#include <cstdint>
#include <vector>

#include "sdk/aravis/SimulatedKind.h"

namespace ZYLGENICAM {

class SimulatedFrameFiller {
public:
    SimulatedFrameFiller(ArvFakeCamera* camera, SimulatedKind kind);

    // Installs a filler on the camera; the camera owns it and frees it with itself.
    static void Install(ArvFakeCamera* camera, SimulatedKind kind);

    static constexpr uint32_t kImageChunkId = 0x0a000001;
    static constexpr uint32_t kFrameInfoChunkId = 0x0c000001;
    static constexpr uint32_t kProfileHeaderChunkId = 0x0b000001;
    static constexpr uint32_t kProfileDataChunkId = 0x0b000002;

private:
    static void Fill(ArvBuffer* buffer, void* filler, guint32 exposureTimeUs, guint32 gain, ArvPixelFormat format);

    uint32_t Register(uint32_t address) const;
    std::size_t FillRamp(uint8_t* data, std::size_t capacity, uint64_t frameId) const;
    std::size_t FillHeightImage(uint8_t* data, std::size_t capacity, uint64_t frameId) const;
    std::size_t FillShowModeFrame(uint8_t* data, std::size_t capacity, uint64_t frameId) const;
    std::size_t FillProfileChunks(uint8_t* data, std::size_t capacity, uint64_t frameId) const;
    void WriteProfile(uint8_t* out, uint32_t width, uint32_t depthBytes, uint64_t shift) const;
    bool ProfileChunkMode() const;

    ArvFakeCamera* m_camera; // owns this filler
    SimulatedKind m_kind;
    std::vector<uint16_t> m_heightProfile;
};

} // namespace ZYLGENICAM
