// Objects of lost devices are let go on a worker thread, so whoever hands them over never waits for
// Aravis's teardown transactions; draining waits for all of them and leaves no thread behind.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "sdk/aravis/LostDeviceTeardown.h"
#include "support/common/ProcessThreads.h"

using ZYLGENICAM::LostDeviceTeardown;

namespace {

// Records which object was let go, on which thread, in which order.
struct DropLog {
    std::mutex mutex;
    std::vector<int> order;
    std::vector<std::thread::id> threads;

    std::shared_ptr<void> Object(int number, std::shared_future<void> release = {})
    {
        return std::shared_ptr<int>(new int(number), [this, release](int* object) {
            if (release.valid()) {
                release.wait();
            }
            std::lock_guard<std::mutex> lock(mutex);
            order.push_back(*object);
            threads.push_back(std::this_thread::get_id());
            delete object;
        });
    }
};

} // namespace

TEST(LostDeviceTeardown, LetsGoInOrderOnAWorkerThatEndsWhenDrained)
{
    // A sanitizer runtime starts a helper thread of its own with the first thread of the process.
    std::thread([] {}).join();
    const std::size_t threadsBefore = ProcessThreadCount();
    DropLog log;
    std::promise<void> releaseFirst;
    LostDeviceTeardown& teardown = LostDeviceTeardown::Instance();

    // The first object blocks its teardown; handing over the others must not wait for it.
    teardown.Add(log.Object(1, releaseFirst.get_future().share()));
    teardown.Add(log.Object(2));
    teardown.Add(nullptr);
    teardown.Add(log.Object(3));
    {
        std::lock_guard<std::mutex> lock(log.mutex);
        EXPECT_TRUE(log.order.empty());
    }
    releaseFirst.set_value();
    teardown.Drain();

    EXPECT_EQ((std::vector<int>{1, 2, 3}), log.order);
    for (std::thread::id thread : log.threads) {
        EXPECT_NE(std::this_thread::get_id(), thread);
    }
    EXPECT_TRUE(WaitForProcessThreadCount(threadsBefore, std::chrono::seconds(5))) << "the worker has ended";

    // A later loss starts a new worker.
    teardown.Add(log.Object(4));
    teardown.Drain();
    EXPECT_EQ(4u, log.order.size());
    EXPECT_TRUE(WaitForProcessThreadCount(threadsBefore, std::chrono::seconds(5)));
    teardown.Drain(); // nothing handed over: returns at once
}
