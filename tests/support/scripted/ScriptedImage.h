// A frame handed out by a scripted device. Its pixel and chunk buffers are allocated on first
// use and freed at Release, so a read after Release is caught by the sanitizers as well.
#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "ZylImage.h"
#include "support/scripted/ScriptedTypes.h"

namespace Scripted {

class ScriptedChunk;
class ScriptedDevice;

class ScriptedImage final : public ZYLGENICAM::IImage {
public:
    ScriptedImage(ScriptedDevice& device, uint64_t handleId, const FrameStep& step);
    ~ScriptedImage();
    ScriptedImage(const ScriptedImage&) = delete;
    ScriptedImage& operator=(const ScriptedImage&) = delete;

    bool IsValid() override;
    uint64_t GetFrameId() override;
    uint64_t GetWidth() override;
    uint64_t GetHeight() override;
    uint64_t GetPixelFormat() override;
    std::list<ZYLGENICAM::IChunk*> GetChunkList() override;
    const void* GetData() override;
    uint64_t GetDataSize() override;
    uint64_t GetTimestamp() override;
    void Release() override;

    uint64_t HandleId() const { return m_handleId; }
    // Called by the device under its lock: false when the image was already released.
    bool MarkReleased();
    void FreeBuffers();
    // Reports a use after Release; true when the image is still out.
    bool CheckOut(const char* operation) const;

private:
    ScriptedDevice& m_device;
    const uint64_t m_handleId;
    const FrameStep m_step;
    std::atomic<bool> m_released{false};
    std::once_flag m_dataAllocated;
    std::vector<unsigned char> m_data;
    std::vector<std::unique_ptr<ScriptedChunk>> m_chunks;
};

} // namespace Scripted
