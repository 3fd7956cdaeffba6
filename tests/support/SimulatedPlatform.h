#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "base/Clock.h"
#include "base/RunLoop.h"
#include "base/WorkQueue.h"

namespace sunpane::testing {

/// Time that moves only by hand, and the executors that run on it. Everything runs on the calling thread, in the
/// order in which it comes due, so that a test of a 0.4 s debounce or of a month of use is exact and takes no time.
///
/// `uptime` drives timers; the wall clock follows it, and may be set apart from it to simulate a clock that jumps.
class SimulatedTime {
public:
    using Task = std::function<void()>;

    explicit SimulatedTime(Instant start = Instant::fromUnix(1795305600)) : wallOffset_(start.sinceReference) {}

    Instant now() const { return {wallOffset_ + uptime_}; }
    Seconds uptime() const { return uptime_; }

    /// Runs what is due now, and what that makes due, without moving time.
    void runPending() { advance(0); }

    /// Moves time forward, running everything that comes due on the way at its own moment.
    void advance(Seconds seconds);

    /// Moves the wall clock to `instant` by advancing; an earlier instant is an error of the test.
    void advanceTo(Instant instant) { advance(instant - now()); }

    /// Sets the wall clock without any uptime passing, as a user or a time server would.
    void jumpWallClock(Instant instant) { wallOffset_ = instant.sinceReference - uptime_; }

    /// Calls `task` after `delay`, and every `interval` when that is above 0, until the subscription is cancelled.
    Subscription schedule(Seconds delay, Seconds interval, Task task);
    void post(Task task);

    /// How many timers and tasks are waiting; a leak shows here.
    std::size_t pendingCount() const { return events_.size(); }

private:
    struct Event {
        Seconds interval = 0;
        std::shared_ptr<Task> task;
    };
    // Due time, then order of scheduling.
    using Key = std::pair<Seconds, std::uint64_t>;
    using Events = std::map<Key, Event>;

    std::shared_ptr<Task> insert(Seconds due, Seconds interval, Task task);

    Seconds uptime_ = 0;
    double wallOffset_;
    std::uint64_t nextOrder_ = 0;
    Events events_;
    // Lets subscriptions that outlive the simulation cancel into nothing.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

class SimulatedClock : public Clock {
public:
    explicit SimulatedClock(SimulatedTime& time) : time_(time) {}
    Instant now() const override { return time_.now(); }
    std::string timeZone() const override { return zone; }
    std::string locale() const override { return localeName; }

    std::string zone = "Europe/Amsterdam";
    std::string localeName = "en_US";

private:
    SimulatedTime& time_;
};

class SimulatedRunLoop : public RunLoop {
public:
    explicit SimulatedRunLoop(SimulatedTime& time) : time_(time) {}
    void post(Task task) override { time_.post(std::move(task)); }
    Subscription after(Seconds delay, Task task) override { return time_.schedule(delay, 0, std::move(task)); }
    Subscription every(Seconds interval, Task task) override {
        return time_.schedule(interval, interval, std::move(task));
    }

private:
    SimulatedTime& time_;
};

/// A queue whose work runs when the simulation's time is run. Destroying it drops what has not started.
class SimulatedWorkQueue : public WorkQueue {
public:
    SimulatedWorkQueue(SimulatedTime& time, std::string label) : time_(time), label_(std::move(label)) {}
    void post(Task task) override {
        time_.post([weak = std::weak_ptr(alive_), task = std::move(task)] {
            if (!weak.expired()) task();
        });
    }
    Subscription after(Seconds delay, Task task) override { return time_.schedule(delay, 0, std::move(task)); }
    Subscription every(Seconds interval, Task task) override {
        return time_.schedule(interval, interval, std::move(task));
    }
    const std::string& label() const override { return label_; }
    void drain() override { time_.runPending(); }

private:
    SimulatedTime& time_;
    std::string label_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

class SimulatedWorkQueueFactory : public WorkQueueFactory {
public:
    explicit SimulatedWorkQueueFactory(SimulatedTime& time) : time_(time) {}
    std::unique_ptr<WorkQueue> makeQueue(std::string label) override {
        return std::make_unique<SimulatedWorkQueue>(time_, std::move(label));
    }

private:
    SimulatedTime& time_;
};

/// What most tests need: time, and a clock, a run loop and queues on it.
struct SimulatedPlatform {
    SimulatedTime time;
    SimulatedClock clock{time};
    SimulatedRunLoop runLoop{time};
    SimulatedWorkQueueFactory queues{time};
};

}  // namespace sunpane::testing
