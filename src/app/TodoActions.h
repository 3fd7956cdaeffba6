#pragma once

#include <string>
#include <string_view>

#include "app/NotchUndo.h"
#include "base/Uuid.h"
#include "core/stores/TodoStore.h"

/// What the user does to a todo that takes more than one step. Main thread only. An unknown id does nothing.
namespace sunpane::todo_actions {

/// Ticks or unticks, against what the list shows now. A todo that is done loses its reminder, for good.
void toggle(TodoStore& todos, const Uuid& id);
void setDone(TodoStore& todos, const Uuid& id, bool done);

/// Deletes, and lets `undo` bring the todo back to where it was, reminder and all. `todos` outlives what is on `undo`.
void removeWithUndo(TodoStore& todos, const Uuid& id, NotchUndo& undo);

/// Renames, and lets `undo` bring the old text back. A text that is blank or the same changes nothing.
void renameWithUndo(TodoStore& todos, const Uuid& id, std::string_view text, NotchUndo& undo);

/// `text` as a todo that a command asks for: valid UTF-8 in one line, with a space where lines broke. Empty when
/// nothing of it could be seen. Pure.
std::string oneLine(std::string_view text);

enum class Outcome { done, noSuchTodo, invalid };

/// Does what a command asks for in words: to "add" a todo with this id, a new one, or to change the one that has it:
/// "done", "open", "prio", "unprio", "rename", "delete". Doing the same twice is as good as once. `invalid` for another
/// verb, or a text without a visible character where one is needed; a text becomes one line. What the user could take
/// back in the panel, `undo` can.
Outcome perform(TodoStore& todos, std::string_view verb, const Uuid& id, std::string_view text, NotchUndo& undo);

/// Adds what was dropped on the list: a briefing card, as a JSON object that says so
/// (`{"dawnly": true, "text": "...", "key": "...", "prio": false}`), or else the text as it is.
void addDropped(TodoStore& todos, std::string_view dropped);

}  // namespace sunpane::todo_actions
