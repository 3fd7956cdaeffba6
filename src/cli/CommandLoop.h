#pragma once

#include <mutex>
#include <utility>
#include <vector>

#include "base/RunLoop.h"

namespace sunpane::cli {

/// The main thread's executor for a command: runs what was posted when told to. A command does not live long enough
/// for timers, so they never fire.
class CommandLoop : public RunLoop {
public:
    void post(Task task) override {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
    }
    Subscription after(Seconds /*delay*/, Task /*task*/) override { return {}; }
    Subscription every(Seconds /*interval*/, Task /*task*/) override { return {}; }

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

}  // namespace sunpane::cli
