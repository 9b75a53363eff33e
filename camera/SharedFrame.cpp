#include "camera/SharedFrame.h"

#include "camera/SharedFramePool.h"

void SharedFrame::Settle(std::size_t listeners)
{
    Drop(kDelivererHold - listeners);
}

void SharedFrame::Drop(uint64_t owners)
{
    if (m_owners.fetch_sub(owners, std::memory_order_acq_rel) != owners)
        return;
    ZYLGENICAM::IImage* frame = m_frame;
    m_frame = nullptr;
    // The last reference to the pool may be this one: nothing of this slot is touched after Return.
    std::shared_ptr<SharedFramePool> pool = std::move(m_pool);
    frame->Release();
    pool->Return(this);
}
