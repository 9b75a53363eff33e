// The slots of a camera's delivered frames. A slot is taken per delivery and comes back after
// the frame's last release; slots are kept, so once the pool holds as many slots as frames are
// out at once, delivering a frame allocates nothing.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "camera/SharedFrame.h"

class SharedFramePool : public std::enable_shared_from_this<SharedFramePool> {
public:
    // The frame in a slot of its own, held by the deliverer until SharedFrame::Settle.
    SharedFrame* Take(ZYLGENICAM::IImage* frame);

private:
    friend class SharedFrame;
    void Return(SharedFrame* slot);

    std::mutex m_mutex;
    std::vector<std::unique_ptr<SharedFrame>> m_slots;
    // Room for every slot is reserved as the pool grows, so returning one never allocates.
    std::vector<SharedFrame*> m_free;
};
