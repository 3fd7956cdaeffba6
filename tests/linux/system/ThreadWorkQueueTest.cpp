#include "linux/system/ThreadWorkQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <mutex>
#include <vector>

namespace sunpane {
namespace {

std::unique_ptr<WorkQueue> makeQueue() {
    return ThreadWorkQueueFactory().makeQueue("test.queue");
}

TEST(ThreadWorkQueue, RunsTasksOfManyThreadsOneAtATimeInOrder) {
    const auto queue = makeQueue();
    std::vector<int> perThread(4, -1);  // touched by the queue alone
    std::atomic<bool> ordered{true};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 500; ++i) {
                queue->post([&, t, i] {
                    if (perThread[static_cast<std::size_t>(t)] != i - 1) ordered = false;
                    perThread[static_cast<std::size_t>(t)] = i;
                });
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    queue->drain();
    EXPECT_TRUE(ordered);
    EXPECT_EQ(perThread, std::vector<int>(4, 499));
}

TEST(ThreadWorkQueue, DelaysRepeatsAndCancels) {
    const auto queue = makeQueue();
    std::atomic<int> ticks{0};
    std::atomic<bool> cancelledRan{false};
    std::promise<void> third;
    auto timer = queue->every(0.005, [&] {
        if (++ticks == 3) third.set_value();
    });
    auto dropped = queue->after(0.01, [&] { cancelledRan = true; });
    dropped.cancel();
    third.get_future().wait();
    timer.cancel();
    queue->drain();
    const int seen = ticks;
    auto later = queue->after(0.03, [] {});
    std::promise<void> end;
    auto fence = queue->after(0.04, [&] { end.set_value(); });
    end.get_future().wait();
    EXPECT_EQ(ticks, seen);
    EXPECT_FALSE(cancelledRan);
}

TEST(ThreadWorkQueue, DestroyingItDropsWhatHasNotStarted) {
    std::atomic<int> runs{0};
    std::promise<void> started;
    Subscription outlives;
    {
        const auto queue = makeQueue();
        outlives = queue->after(60, [&] { ++runs; });
        queue->post([&] { started.set_value(); });
        started.get_future().wait();
    }
    outlives.cancel();
    EXPECT_EQ(runs, 0);
}

TEST(ThreadWorkQueue, MayBeLetGoByItsOwnTask) {
    std::promise<void> done;
    std::shared_ptr<WorkQueue> queue = makeQueue();
    auto* raw = queue.get();
    raw->post([&done, held = std::move(queue)]() mutable {
        held.reset();
        done.set_value();
    });
    EXPECT_EQ(done.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
}

}  // namespace
}  // namespace sunpane
