#pragma once

#include <mutex>
#include <utility>
#include <vector>

#include "base/RunLoop.h"

namespace sunpane {

/// The main thread's executor in a program that does one thing and ends: runs what was posted when told to. Timers
/// never fire. Posting is for any thread, the rest for the main thread.
class ManualRunLoop : public RunLoop {
public:
    void post(Task task) override {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
    }
    Subscription after(Seconds, Task) override { return {}; }
    Subscription every(Seconds, Task) override { return {}; }

    /// Runs what has been posted so far.
    void runPosted() {
        std::vector<Task> tasks;
        {
            const std::lock_guard lock(mutex_);
            tasks.swap(tasks_);
        }
        for (const Task& task : tasks)
            task();
    }

private:
    std::mutex mutex_;
    std::vector<Task> tasks_;
};

}  // namespace sunpane
