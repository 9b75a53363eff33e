// What we know about one pool buffer beyond Aravis's view of it. Our simulated cameras fill
// buffers through a fill callback that cannot set Aravis's received size or payload type, so
// the callback records here how many bytes it wrote and whether they carry chunks.
#pragma once

#include <atomic>
#include <cstddef>

namespace ZYLGENICAM {

struct FrameBufferInfo {
    explicit FrameBufferInfo(std::size_t size) : allocatedSize(size) {}

    std::size_t allocatedSize;
    std::size_t simulatedSize = 0; // 0: the frame came from a real device; Aravis's sizes hold
    bool simulatedChunks = false;
    // Bumped (release) by whoever hands the buffer on and read (acquire) by whoever takes it: the
    // stream's own queue synchronizes through GLib futexes that thread checkers cannot see.
    std::atomic<unsigned> handoff{0};

    void Hand() { handoff.fetch_add(1, std::memory_order_release); }
    void Take() const { (void)handoff.load(std::memory_order_acquire); }
};

} // namespace ZYLGENICAM
