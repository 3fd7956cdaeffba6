#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/SimulatedPlatform.h"

namespace sunpane::testing {
namespace {

using ::testing::ElementsAre;

TEST(SimulatedTime, RunsEverythingAtItsOwnMomentInOrder) {
    SimulatedPlatform platform;
    const Seconds start = platform.time.uptime();
    std::vector<std::pair<std::string, double>> log;
    const auto note = [&](const std::string& what) {
        return [&, what] { log.emplace_back(what, platform.time.uptime() - start); };
    };
    auto tick = platform.runLoop.every(1.0, note("tick"));
    auto once = platform.runLoop.after(1.0, note("once"));
    auto queue = platform.queues.makeQueue("q");
    queue->post([&] {
        note("posted")();
        platform.runLoop.post(note("back"));
    });
    platform.time.advance(2.5);
    tick.cancel();
    platform.time.advance(10);
    EXPECT_THAT(log, ElementsAre(std::pair("posted", 0.0), std::pair("back", 0.0), std::pair("tick", 1.0),
                                 std::pair("once", 1.0), std::pair("tick", 2.0)));
    EXPECT_EQ(platform.time.pendingCount(), 0U);
}

TEST(SimulatedTime, DestroyedHandlesAndQueuesRunNothing) {
    SimulatedPlatform platform;
    int runs = 0;
    {
        auto timer = platform.runLoop.after(1, [&] { ++runs; });
        auto queue = platform.queues.makeQueue("q");
        queue->post([&] { ++runs; });
    }
    platform.time.advance(5);
    EXPECT_EQ(runs, 0);
}

TEST(SimulatedTime, AJumpOfTheWallClockLeavesTimersAlone) {
    SimulatedPlatform platform;
    int runs = 0;
    auto timer = platform.runLoop.after(10, [&] { ++runs; });
    platform.time.jumpWallClock(platform.clock.now() + 3600);
    platform.time.advance(9);
    EXPECT_EQ(runs, 0);
    platform.time.advance(1);
    EXPECT_EQ(runs, 1);
}

}  // namespace
}  // namespace sunpane::testing
