// A frame as the host's image listeners receive it: the SDK frame behind a count of its owners.
// Every listener that was handed it releases it once; the last release hands the SDK frame back
// to the acquisition stream, and with no listener at all that happens as soon as delivery ends.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "ZylImage.h"

class SharedFramePool;

class SharedFrame final : public ZYLGENICAM::IImage {
public:
    bool IsValid() override { return m_frame->IsValid(); }
    uint64_t GetFrameId() override { return m_frame->GetFrameId(); }
    uint64_t GetWidth() override { return m_frame->GetWidth(); }
    uint64_t GetHeight() override { return m_frame->GetHeight(); }
    uint64_t GetPixelFormat() override { return m_frame->GetPixelFormat(); }
    std::list<ZYLGENICAM::IChunk*> GetChunkList() override { return m_frame->GetChunkList(); }
    const void* GetData() override { return m_frame->GetData(); }
    uint64_t GetDataSize() override { return m_frame->GetDataSize(); }
    uint64_t GetTimestamp() override { return m_frame->GetTimestamp(); }
    // One listener is done with the frame.
    void Release() override { Drop(1); }

    // Called by the deliverer once the notification returned, with the number of listeners that
    // were handed the frame: until then the deliverer's hold keeps the frame out, however early
    // the listeners release it.
    void Settle(std::size_t listeners);

private:
    friend class SharedFramePool;
    // Larger than any number of listeners.
    static constexpr uint64_t kDelivererHold = uint64_t{1} << 32;

    void Drop(uint64_t owners);

    ZYLGENICAM::IImage* m_frame = nullptr;
    std::atomic<uint64_t> m_owners{0};
    // Keeps the pool (and this slot in it) alive while the frame is out, also past its camera.
    std::shared_ptr<SharedFramePool> m_pool;
};
