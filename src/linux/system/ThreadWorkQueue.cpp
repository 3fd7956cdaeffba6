#include "linux/system/ThreadWorkQueue.h"

#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

namespace sunpane {
namespace {

using SteadyClock = std::chrono::steady_clock;
using TimePoint = SteadyClock::time_point;

SteadyClock::duration toDuration(Seconds seconds) {
    return std::chrono::duration_cast<SteadyClock::duration>(std::chrono::duration<double>(seconds));
}

/// What the queue, its thread and the handles given out share; it outlives whichever goes first.
class QueueState {
public:
    using Task = SerialExecutor::Task;
    using Key = std::pair<TimePoint, std::uint64_t>;

    Key schedule(TimePoint due, Seconds interval, Task task, const std::shared_ptr<bool>& cancelled) {
        const std::lock_guard lock(mutex_);
        const Key key{due, nextOrder_++};
        if (!stopped_) events_.emplace(key, Event{interval, std::move(task), cancelled});
        changed_.notify_all();
        return key;
    }

    void cancel(const std::shared_ptr<bool>& cancelled) {
        Events dropped;  // destroyed outside the lock: what a task captured may cancel something else
        const std::lock_guard lock(mutex_);
        *cancelled = true;
        for (auto it = events_.begin(); it != events_.end();) {
            const auto next = std::next(it);
            if (it->second.cancelled == cancelled) dropped.insert(events_.extract(it));
            it = next;
        }
    }

    void stop() {
        Events dropped;
        const std::lock_guard lock(mutex_);
        stopped_ = true;
        dropped.swap(events_);
        changed_.notify_all();
    }

    void run() {
        std::unique_lock lock(mutex_);
        while (!stopped_) {
            if (events_.empty()) {
                changed_.wait(lock);
                continue;
            }
            const TimePoint due = events_.begin()->first.first;
            if (SteadyClock::now() < due) {
                changed_.wait_until(lock, due);
                continue;
            }
            auto node = events_.extract(events_.begin());
            Event& event = node.mapped();
            Task task = event.interval > 0 ? event.task : std::move(event.task);
            if (event.interval > 0) {
                // Firings missed while the machine slept or a task ran long are not made up for.
                TimePoint next = due + toDuration(event.interval);
                if (next < SteadyClock::now()) next = SteadyClock::now() + toDuration(event.interval);
                events_.emplace(Key{next, nextOrder_++}, std::move(event));
            }
            lock.unlock();
            task();
            task = nullptr;
            lock.lock();
        }
    }

private:
    struct Event {
        Seconds interval = 0;
        Task task;
        std::shared_ptr<bool> cancelled;
    };
    using Events = std::map<Key, Event>;

    std::mutex mutex_;
    std::condition_variable changed_;
    Events events_;
    std::uint64_t nextOrder_ = 0;
    bool stopped_ = false;
};

class ThreadWorkQueue : public WorkQueue {
public:
    explicit ThreadWorkQueue(std::string label)
        : label_(std::move(label)), thread_([state = state_] { state->run(); }) {
        // The kernel keeps 15 characters; the end of the label says the most.
        const std::string name = label_.size() > 15 ? label_.substr(label_.size() - 15) : label_;
        pthread_setname_np(thread_.native_handle(), name.c_str());
    }

    ~ThreadWorkQueue() override {
        state_->stop();
        // The last owner may let go inside one of the queue's own tasks; the thread ends by itself then.
        if (thread_.get_id() == std::this_thread::get_id()) {
            thread_.detach();
        } else {
            thread_.join();
        }
    }

    ThreadWorkQueue(const ThreadWorkQueue&) = delete;
    ThreadWorkQueue& operator=(const ThreadWorkQueue&) = delete;

    void post(Task task) override { state_->schedule(TimePoint::min(), 0, std::move(task), nullptr); }
    Subscription after(Seconds delay, Task task) override { return schedule(delay, 0, std::move(task)); }
    Subscription every(Seconds interval, Task task) override { return schedule(interval, interval, std::move(task)); }
    const std::string& label() const override { return label_; }

    void drain() override {
        std::mutex mutex;
        std::condition_variable done;
        bool reached = false;
        post([&] {
            const std::lock_guard lock(mutex);
            reached = true;
            done.notify_one();
        });
        std::unique_lock lock(mutex);
        done.wait(lock, [&] { return reached; });
    }

private:
    Subscription schedule(Seconds delay, Seconds interval, Task task) {
        auto cancelled = std::make_shared<bool>(false);
        state_->schedule(SteadyClock::now() + toDuration(delay), interval, std::move(task), cancelled);
        return Subscription([state = std::weak_ptr(state_), cancelled] {
            if (const auto queue = state.lock()) queue->cancel(cancelled);
        });
    }

    std::shared_ptr<QueueState> state_ = std::make_shared<QueueState>();
    std::string label_;
    std::thread thread_;
};

}  // namespace

std::unique_ptr<WorkQueue> ThreadWorkQueueFactory::makeQueue(std::string label) {
    return std::make_unique<ThreadWorkQueue>(std::move(label));
}

}  // namespace sunpane
