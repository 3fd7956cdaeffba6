#pragma once

#include <cstddef>
#include <deque>
#include <functional>

#include "base/Spring.h"

namespace sunpane {

/// What the user can take back in the panel: the latest actions, each of which restores the state before it.
///
/// One instance for the process, `shared`; main thread only. Not kept across starts.
class NotchUndo {
public:
    using Action = std::function<void()>;

    static constexpr std::size_t maximumActions = 50;
    static constexpr Spring animation{0.32, 0.76};

    static NotchUndo& shared();

    /// Adds an action; beyond `maximumActions` the oldest is forgotten.
    void push(Action action);

    /// Runs the newest action and forgets it. False when there is none.
    bool undo();

    std::size_t size() const { return stack_.size(); }

    /// Runs an action so that what it changes moves with the spring; the user interface sets it. Without it actions
    /// just run.
    std::function<void(const Spring& spring, const Action& action)> animate;

private:
    std::deque<Action> stack_;
};

}  // namespace sunpane
