#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/LocalNotifications.h"
#include "base/Observable.h"
#include "support/SimulatedPlatform.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;

TEST(LocalNotifications, ReachObserversOfTheirNameInOrderUntilCancelled) {
    LocalNotifications notifications;
    std::vector<std::string> heard;
    auto first =
        notifications.observe("reveal", [&](const auto& object) { heard.push_back("1:" + object.value_or("-")); });
    auto second = notifications.observe("reveal", [&](const auto&) { heard.push_back("2"); });
    auto other = notifications.observe("collapse", [&](const auto&) { heard.push_back("other"); });
    notifications.post("reveal", "id");
    first.cancel();
    notifications.post("reveal");
    notifications.post("nobody");
    EXPECT_THAT(heard, ElementsAre("1:id", "2", "2"));
}

TEST(LocalNotifications, ObserversMayCancelAndAddWhileBeingCalled) {
    LocalNotifications notifications;
    int calls = 0;
    Subscription late;
    Subscription cancelledByOther;
    Subscription self;
    self = notifications.observe("n", [&](const auto&) {
        ++calls;
        self.cancel();
        cancelledByOther.cancel();
        late = notifications.observe("n", [&](const auto&) { calls += 100; });
    });
    cancelledByOther = notifications.observe("n", [&](const auto&) { calls += 10; });
    notifications.post("n");
    EXPECT_EQ(calls, 1);
    notifications.post("n");
    EXPECT_EQ(calls, 101);
}

TEST(Subscription, OutlivesWhatItSubscribedTo) {
    Subscription subscription;
    {
        LocalNotifications notifications;
        subscription = notifications.observe("n", [](const auto&) {});
    }
    subscription.cancel();
    EXPECT_FALSE(subscription);
}

struct Counter : Observable {
    void set(int next) {
        announceChange();
        value = next;
    }
    int value = 0;
};

TEST(Observable, AnnouncesBeforeTheChangeAndDebouncesBursts) {
    testing::SimulatedPlatform platform;
    Counter counter;
    std::vector<int> seen;
    std::vector<int> settled;
    Debouncer debouncer(platform.runLoop, 1.0, [&] { settled.push_back(counter.value); });
    auto subscription = counter.onWillChange([&] {
        seen.push_back(counter.value);
        debouncer.trigger();
    });
    counter.set(1);
    platform.time.advance(0.9);
    counter.set(2);
    platform.time.advance(0.99);
    EXPECT_THAT(settled, ElementsAre());
    platform.time.advance(0.02);
    counter.set(3);
    platform.time.advance(5);
    EXPECT_THAT(seen, ElementsAre(0, 1, 2));
    EXPECT_THAT(settled, ElementsAre(2, 3));
}

}  // namespace
}  // namespace sunpane
