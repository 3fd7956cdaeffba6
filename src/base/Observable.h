#pragma once

#include <functional>

#include "base/HandlerList.h"
#include "base/SerialExecutor.h"

namespace sunpane {

/// Something long-lived whose changes others follow. Main thread only.
///
/// A change is announced **before** it takes effect: an observer that needs the new state posts itself a task, and
/// by the time that runs the change is in place.
class Observable {
public:
    [[nodiscard]] Subscription onWillChange(std::function<void()> handler);

protected:
    Observable() = default;
    ~Observable() = default;
    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;

    void announceChange() const;

private:
    HandlerList<> observers_;
};

/// Collects bursts: runs `task` once, `interval` seconds after the last call of `trigger`. Lives on the executor's
/// thread; destroying it drops a waiting run.
class Debouncer {
public:
    Debouncer(SerialExecutor& executor, Seconds interval, std::function<void()> task);

    void trigger();
    void cancel();

private:
    SerialExecutor& executor_;
    Seconds interval_;
    std::function<void()> task_;
    Subscription pending_;
};

}  // namespace sunpane
