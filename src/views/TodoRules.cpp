#include "views/TodoRules.h"

#include <algorithm>
#include <cmath>

#include "base/Dates.h"

namespace sunpane::todo_rules {

Axis dragAxis(double dx, double dy) {
    return std::abs(dy) >= std::abs(dx) ? Axis::vertical : Axis::horizontal;
}

std::size_t dropIndex(std::size_t startIndex, double dy, std::size_t count) {
    const double target = static_cast<double>(startIndex) + std::round(dy / rowHeight);
    return static_cast<std::size_t>(std::clamp(target, 0.0, static_cast<double>(count - 1)));
}

double scrollSpeed(double y, double height, double dy) {
    const double zone = std::min(scrollZone, height / 3);
    const double above = std::clamp((zone - y) / zone, 0.0, 1.0);
    const double below = std::clamp((y - (height - zone)) / zone, 0.0, 1.0);
    // Whoever lifts the last row in view to take it up must not see the list run away.
    if (dy < 0) return -fastestScroll * above;
    return dy > 0 ? fastestScroll * below : 0;
}

std::size_t landingIndex(const std::vector<Todo>& todos, std::size_t from, std::size_t target) {
    const auto isWith = [&todo = todos[from]](const Todo& other) {
        return other.done == todo.done && (todo.done || other.isPrio() == todo.isPrio());
    };
    const auto first = std::find_if(todos.begin(), todos.end(), isWith);
    const auto last = first + (std::count_if(todos.begin(), todos.end(), isWith) - 1);
    return std::clamp(target, static_cast<std::size_t>(first - todos.begin()),
                      static_cast<std::size_t>(last - todos.begin()));
}

Swipe swipeOutcome(double dx) {
    if (dx > swipeThreshold) return Swipe::togglePriority;
    if (dx < -swipeThreshold) return Swipe::remove;
    return Swipe::none;
}

std::string reminderTooltip(const Todo& todo, const Clock& clock) {
    if (!todo.remindAt) return {};
    std::string text = "Reminder: " + LocalCalendar(clock).dateAndTime(*todo.remindAt);
    if (todo.remindRepeat) text += " · repeats " + *todo.remindRepeat;
    return text;
}

std::string addToCalendarHelp(Instant date, const Clock& clock) {
    return "Add to Calendar — " + LocalCalendar(clock).format(date, "EEE d MMM, HH:mm");
}

}  // namespace sunpane::todo_rules
