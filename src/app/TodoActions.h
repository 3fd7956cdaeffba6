#pragma once

#include "app/NotchUndo.h"
#include "base/Uuid.h"
#include "core/stores/TodoStore.h"

/// What the user does to a todo that takes more than one step. Main thread only. An unknown id does nothing.
namespace sunpane::todo_actions {

/// Ticks or unticks. A todo that is done loses its reminder, for good.
void toggle(TodoStore& todos, const Uuid& id);

/// Deletes, and lets `undo` bring the todo back to where it was, reminder and all. `todos` outlives what is on `undo`.
void removeWithUndo(TodoStore& todos, const Uuid& id, NotchUndo& undo);

}  // namespace sunpane::todo_actions
