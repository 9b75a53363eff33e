#include "camera/SharedFramePool.h"

SharedFrame* SharedFramePool::Take(ZYLGENICAM::IImage* frame)
{
    SharedFrame* slot = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_free.empty()) {
            m_slots.push_back(std::make_unique<SharedFrame>());
            m_free.reserve(m_slots.size());
            slot = m_slots.back().get();
        } else {
            slot = m_free.back();
            m_free.pop_back();
        }
    }
    slot->m_frame = frame;
    slot->m_owners.store(SharedFrame::kDelivererHold, std::memory_order_relaxed);
    slot->m_pool = shared_from_this();
    return slot;
}

void SharedFramePool::Return(SharedFrame* slot)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_free.push_back(slot);
}
