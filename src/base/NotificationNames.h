#pragma once

/// The names of the notifications that fold and unfold the panel, give it the keyboard and move its folder.
namespace sunpane::notification {

inline constexpr const char* briefingsFolderChanged = "briefingsFolderChanged";
inline constexpr const char* collapseNotch = "collapseNotch";
inline constexpr const char* showSettings = "showSettings";
/// With a todo's UUID as its object, or with none.
inline constexpr const char* revealTodo = "revealTodo";
/// The user pressed the hotkey: opens the panel to write a todo down, or folds it when it is open.
inline constexpr const char* quickCapture = "quickCapture";
/// The field for new todos takes the keyboard focus within the panel.
inline constexpr const char* quickCaptureFocus = "quickCaptureFocus";
/// A text in the panel is about to be edited, so the panel takes the keyboard and stays open for a while.
inline constexpr const char* makeNotchKey = "makeNotchKey";

}  // namespace sunpane::notification
