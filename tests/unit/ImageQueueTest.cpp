// The frame queue between a camera's grab and delivery threads keeps order across the ring's wrap and
// growth (that every frame is released is seen at the camera, by closing while grabbing).
#include <gtest/gtest.h>

#include <vector>

#include "camera/ImageQueue.h"

namespace {

// The queue only moves frames around.
class EmptyImage final : public ZYLGENICAM::IImage {
public:
    bool IsValid() override { return true; }
    uint64_t GetFrameId() override { return 0; }
    uint64_t GetWidth() override { return 0; }
    uint64_t GetHeight() override { return 0; }
    uint64_t GetPixelFormat() override { return 0; }
    std::list<ZYLGENICAM::IChunk*> GetChunkList() override { return {}; }
    const void* GetData() override { return nullptr; }
    uint64_t GetDataSize() override { return 0; }
    uint64_t GetTimestamp() override { return 0; }
    void Release() override {}
};

} // namespace

TEST(ImageQueue, KeepsOrderAcrossWrapAndGrowth)
{
    std::vector<EmptyImage> images(40);
    ImageQueue queue;
    // Two in, two out, many times: the ring wraps around its storage.
    for (std::size_t i = 0; i < 20; i += 2) {
        queue.PushBack(&images[i]);
        queue.PushBack(&images[i + 1]);
        EXPECT_EQ(&images[i], queue.PopFront());
        EXPECT_EQ(&images[i + 1], queue.PopFront());
    }
    // A batch deeper than the ring, queued while its head sits mid-storage.
    queue.PushBack(&images[20]);
    (void)queue.PopFront();
    for (std::size_t i = 21; i < 40; ++i) {
        queue.PushBack(&images[i]);
    }
    EXPECT_EQ(&images[39], queue.PopBack());
    for (std::size_t i = 21; i < 39; ++i) {
        EXPECT_EQ(&images[i], queue.PopFront()) << "frame " << i;
    }
    EXPECT_TRUE(queue.Empty());
}
