#pragma once

#include <memory>
#include <string>

#include "base/WorkQueue.h"

namespace sunpane {

/// Serial queues on a thread each. An idle queue sleeps until its next task is due.
class ThreadWorkQueueFactory : public WorkQueueFactory {
public:
    std::unique_ptr<WorkQueue> makeQueue(std::string label) override;
};

}  // namespace sunpane
