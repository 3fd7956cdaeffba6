#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/stores/StoreFile.h"
#include "core/stores/Todo.h"

namespace sunpane {

/// What `todos.json` holds. A plain value; the functions are pure and may run on any thread.
struct TodoState {
    /// In display order.
    std::vector<Todo> todos;
    /// "yyyy-MM-dd" of the last briefing that was imported; empty before the first.
    std::string lastImportDay;
    /// Text keys of deleted todos, oldest first.
    std::vector<std::string> dismissed;

    friend bool operator==(const TodoState&, const TodoState&) = default;
};

std::string encodeTodo(const Todo& todo);
std::string encodeTodos(const TodoState& state);

/// Absent when anything in the file is not as it must be. Of todos with the same id, all but the first get another.
std::optional<TodoState> decodeTodos(std::string_view file);

/// Puts the open priorities first and the done todos last; each group keeps its order.
void partition(std::vector<Todo>& todos);
/// The same, when only the todo at `index` may be out of its group.
void moveIntoGroup(std::vector<Todo>& todos, std::size_t index);

/// The state that carries both sides' changes to `base`: additions, removals, edits field by field, order. Where both
/// changed the same field, ours wins; an edit on one side outlives a removal on the other.
TodoState mergeTodos(const TodoState& base, const TodoState& ours, const TodoState& theirs);

StoreFormat todoFormat();

}  // namespace sunpane
