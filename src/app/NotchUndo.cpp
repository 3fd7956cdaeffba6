#include "app/NotchUndo.h"

#include <utility>

namespace sunpane {

NotchUndo& NotchUndo::shared() {
    static NotchUndo undo;
    return undo;
}

void NotchUndo::push(Action action) {
    if (stack_.size() >= maximumActions) stack_.pop_front();
    stack_.push_back(std::move(action));
}

bool NotchUndo::undo() {
    if (stack_.empty()) return false;
    // Taken off first: the action may push another.
    const Action action = std::move(stack_.back());
    stack_.pop_back();
    if (animate) {
        animate(animation, action);
    } else {
        action();
    }
    return true;
}

}  // namespace sunpane
