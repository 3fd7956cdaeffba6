#include "base/Observable.h"

#include <utility>

namespace sunpane {

Subscription Observable::onWillChange(std::function<void()> handler) {
    return observers_.add(std::move(handler));
}

void Observable::announceChange() const {
    observers_.call();
}

Debouncer::Debouncer(SerialExecutor& executor, Seconds interval, std::function<void()> task)
    : executor_(executor), interval_(interval), task_(std::move(task)) {}

void Debouncer::trigger() {
    pending_.cancel();
    pending_ = executor_.after(interval_, task_);
}

void Debouncer::cancel() {
    pending_.cancel();
}

}  // namespace sunpane
