#include "camera/ImageQueue.h"

namespace {

constexpr std::size_t kInitialSlots = 4;

} // namespace

void ImageQueue::PushBack(ZYLGENICAM::IImage* image)
{
    if (m_count == m_slots.size())
        Grow();
    m_slots[SlotOf(m_count)] = image;
    ++m_count;
}

ZYLGENICAM::IImage* ImageQueue::PopFront()
{
    ZYLGENICAM::IImage* image = m_slots[m_head];
    m_head = SlotOf(1);
    --m_count;
    return image;
}

ZYLGENICAM::IImage* ImageQueue::PopBack()
{
    ZYLGENICAM::IImage* image = Back();
    --m_count;
    return image;
}

void ImageQueue::ReleaseAll()
{
    while (!Empty()) {
        if (ZYLGENICAM::IImage* image = PopFront())
            image->Release();
    }
    m_head = 0;
}

// Unrolls the ring into twice the room, oldest first.
void ImageQueue::Grow()
{
    std::vector<ZYLGENICAM::IImage*> slots(m_slots.empty() ? kInitialSlots : 2 * m_slots.size(), nullptr);
    for (std::size_t position = 0; position < m_count; ++position)
        slots[position] = m_slots[SlotOf(position)];
    m_slots.swap(slots);
    m_head = 0;
}
