// The frame queue between a camera's grab and delivery threads: order is kept across the ring's
// wrap and growth, and releasing empties it with every frame handed back exactly once.
#include <gtest/gtest.h>

#include <vector>

#include "camera/ImageQueue.h"

namespace {

// A frame that only counts its releases.
class CountedImage final : public ZYLGENICAM::IImage {
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
    void Release() override { ++releases; }

    int releases = 0;
};

} // namespace

TEST(ImageQueue, KeepsOrderAcrossWrapAndGrowth)
{
    std::vector<CountedImage> images(40);
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

// A frame taken out is the taker's to release; a null slot is skipped.
TEST(ImageQueue, ReleaseAllHandsEveryFrameBackOnceAndSkipsEmptySlots)
{
    std::vector<CountedImage> images(5);
    ImageQueue queue;
    for (CountedImage& image : images) {
        queue.PushBack(&image);
    }
    queue.PushBack(nullptr);
    (void)queue.PopFront();
    queue.ReleaseAll();
    queue.ReleaseAll();
    EXPECT_TRUE(queue.Empty());
    EXPECT_EQ(0, images[0].releases);
    for (std::size_t i = 1; i < 5; ++i) {
        EXPECT_EQ(1, images[i].releases) << "frame " << i;
    }
    queue.PushBack(&images[0]);
    EXPECT_EQ(&images[0], queue.Front()) << "usable after release";
}
