// A camera's frames waiting for delivery, oldest first. A ring that keeps its storage: once it has
// reached its usual depth (two frames, a batch's worth for a profile camera) queuing a frame
// allocates nothing, which a linked list would do for every frame.
#pragma once

#include <cstddef>
#include <vector>

#include "ZylImage.h"

class ImageQueue {
public:
    bool Empty() const { return m_count == 0; }
    std::size_t Size() const { return m_count; }

    // Both require a non-empty queue.
    ZYLGENICAM::IImage* Front() const { return m_slots[m_head]; }
    ZYLGENICAM::IImage* Back() const { return m_slots[SlotOf(m_count - 1)]; }

    void PushBack(ZYLGENICAM::IImage* image);
    ZYLGENICAM::IImage* PopFront();
    ZYLGENICAM::IImage* PopBack();
    // Releases every queued frame and empties the queue.
    void ReleaseAll();

private:
    std::size_t SlotOf(std::size_t position) const { return (m_head + position) % m_slots.size(); }
    void Grow();

    std::vector<ZYLGENICAM::IImage*> m_slots;
    std::size_t m_head = 0;
    std::size_t m_count = 0;
};
