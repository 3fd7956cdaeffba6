#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/Clock.h"
#include "base/Instant.h"
#include "base/Uuid.h"

namespace sunpane {

/// One entry of the todo list. A plain value, compared over all its fields.
struct Todo {
    Uuid id;
    std::string text;
    /// "WRK" or "PRSNL", taken from an imported action item; absent otherwise.
    std::optional<std::string> tag;
    bool done = false;
    /// When it was marked done; absent while open.
    std::optional<Instant> doneAt;
    Instant createdAt;
    /// Absent: never set.
    std::optional<bool> prio;
    /// The key of the briefing card that it was made from.
    std::optional<std::string> sourceItemKey;
    std::optional<Instant> remindAt;
    /// "daily", "weekly" or "monthly"; absent: once.
    std::optional<std::string> remindRepeat;
    /// The calendar event that was made from this todo.
    std::optional<std::string> eventID;
    /// Where it came from: one of the constants of `todo_source`.
    std::optional<std::string> source;

    /// A new todo with an id of its own, created at `now`.
    static Todo make(std::string text, Instant now);

    bool isPrio() const { return prio == true; }

    /// The short line under the row that says where the todo came from; absent when it needs none.
    std::optional<std::string_view> sourceNote() const;

    friend bool operator==(const Todo&, const Todo&) = default;
};

namespace todo_source {
inline constexpr std::string_view you = "you";
inline constexpr std::string_view item = "item";
inline constexpr std::string_view brief = "brief";
inline constexpr std::string_view calendar = "calendar";
}  // namespace todo_source

/// The form in which todo texts are compared: lower case, trimmed, and every pair of adjacent spaces made one in a
/// single pass, so that three spaces become two. `text` is valid UTF-8.
std::string textKey(std::string_view text);

}  // namespace sunpane

template <>
struct std::hash<sunpane::Todo> {
    std::size_t operator()(const sunpane::Todo& todo) const noexcept;
};
