#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "core/stores/Todo.h"

/// What a gesture on a todo row means, and what a row says. Lengths in points.
namespace sunpane::todo_rules {

/// The pitch that turns a vertical drag into a number of rows.
inline constexpr double rowHeight = 28;
/// A horizontal swipe must go further than this to count.
inline constexpr double swipeThreshold = 70;
/// A dragged row scrolls the list this near to its ends, and this fast (points/s) at them and beyond.
inline constexpr double scrollZone = 32;
inline constexpr double fastestScroll = 480;
/// A press that moves less than this is no drag.
inline constexpr double dragDistance = 6;

enum class Axis { horizontal, vertical };

/// The direction of a drag, decided once, by its first movement.
Axis dragAxis(double dx, double dy);

/// Where a row that was dragged down by `dy` from `startIndex` lands in a list of `count` rows, `count` > 0.
std::size_t dropIndex(std::size_t startIndex, double dy, std::size_t count);

/// How fast (points/s, down the list above 0) a list of this height scrolls while a row is dragged to `y`, from its
/// top, and `dy` from where it was lifted. It begins near an end, grows towards it, and never goes against the drag.
double scrollSpeed(double y, double height, double dy);

/// Where the row at `from` comes to rest when it is moved to `target`: the open priorities, the other open todos and
/// the done ones stay together.
std::size_t landingIndex(const std::vector<Todo>& todos, std::size_t from, std::size_t target);

enum class Swipe { none, togglePriority, remove };
Swipe swipeOutcome(double dx);

/// "Reminder: 22 Nov 2026, 15:00 · repeats weekly" in the user's way of writing; empty without a reminder.
std::string reminderTooltip(const Todo& todo, const Clock& clock);

/// "Add to Calendar — Sun 22 Nov, 15:00".
std::string addToCalendarHelp(Instant date, const Clock& clock);

}  // namespace sunpane::todo_rules
