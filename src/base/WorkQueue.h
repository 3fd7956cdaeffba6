#pragma once

#include <memory>
#include <string>

#include "base/SerialExecutor.h"

namespace sunpane {

/// A labelled serial queue for background work. Destroying it drops what has not started and waits for the task that
/// is running.
class WorkQueue : public SerialExecutor {
public:
    virtual const std::string& label() const = 0;

    /// Blocks until everything that was posted before this call has run. Never called from a task of this queue.
    virtual void drain() = 0;
};

/// Makes queues; the composition root hands one to whoever needs a queue of its own.
class WorkQueueFactory {
public:
    virtual ~WorkQueueFactory() = default;
    virtual std::unique_ptr<WorkQueue> makeQueue(std::string label) = 0;
};

}  // namespace sunpane
