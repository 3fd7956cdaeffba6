#pragma once

/// The names of the notifications that fold and unfold the panel and move its folder.
namespace sunpane::notification {

inline constexpr const char* briefingsFolderChanged = "briefingsFolderChanged";
inline constexpr const char* collapseNotch = "collapseNotch";
/// With a todo's UUID as its object, or with none.
inline constexpr const char* revealTodo = "revealTodo";

}  // namespace sunpane::notification
