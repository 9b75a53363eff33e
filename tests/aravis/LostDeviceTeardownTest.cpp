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

TEST(LostDeviceTeardown, LetsGoInOrderOnAWorkerThatEndsWhenDrained)
{
    // A sanitizer runtime starts a helper thread of its own with the first thread of the process.
    std::thread([] {}).join();
    const std::size_t threadsBefore = ProcessThreadCount();
    std::mutex mutex;
    std::vector<int> order;
    // An object that notes when it was let go, after `release` when given.
    auto object = [&](int number, std::shared_future<void> release = {}) {
        return std::shared_ptr<int>(new int(number), [&, release](int* pointer) {
            if (release.valid()) {
                release.wait();
            }
            std::lock_guard<std::mutex> lock(mutex);
            order.push_back(*pointer);
            delete pointer;
        });
    };
    std::promise<void> releaseFirst;
    LostDeviceTeardown& teardown = LostDeviceTeardown::Instance();

    // The first object blocks its teardown; handing over the others must not wait for it.
    teardown.Add(object(1, releaseFirst.get_future().share()));
    teardown.Add(object(2));
    teardown.Add(nullptr);
    teardown.Add(object(3));
    {
        std::lock_guard<std::mutex> lock(mutex);
        EXPECT_TRUE(order.empty());
    }
    releaseFirst.set_value();
    teardown.Drain();
    EXPECT_EQ((std::vector<int>{1, 2, 3}), order);
    EXPECT_TRUE(WaitForProcessThreadCount(threadsBefore, std::chrono::seconds(5))) << "the worker has ended";

    // A later loss starts a new worker.
    teardown.Add(object(4));
    teardown.Drain();
    EXPECT_EQ(4u, order.size());
    EXPECT_TRUE(WaitForProcessThreadCount(threadsBefore, std::chrono::seconds(5)));
    teardown.Drain(); // nothing handed over: returns at once
}
