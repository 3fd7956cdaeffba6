#include "app/TodoActions.h"

namespace sunpane::todo_actions {

void toggle(TodoStore& todos, const Uuid& id) {
    const auto index = todos.indexOf(id);
    if (!index) return;
    const Todo& todo = todos.todos()[*index];
    if (!todo.done && todo.remindAt) todos.setReminder(id, std::nullopt, std::nullopt);
    todos.toggle(id);
}

void removeWithUndo(TodoStore& todos, const Uuid& id, NotchUndo& undo) {
    const auto index = todos.indexOf(id);
    if (!index) return;
    undo.push([&todos, todo = todos.todos()[*index], place = *index] { todos.restore(todo, place); });
    todos.remove(id);
}

}  // namespace sunpane::todo_actions
