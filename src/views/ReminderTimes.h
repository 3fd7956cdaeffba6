#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/Dates.h"
#include "base/Instant.h"

/// The times and the repetitions that the panel offers for a reminder. Pure.
namespace sunpane::reminder_times {

/// The rows of a reminder menu, in their order.
enum Option : std::size_t { inOneHour, inThreeHours, tomorrowAtNine, custom };
inline constexpr std::array<std::string_view, 4> optionTexts{"In 1 hour", "In 3 hours", "Tomorrow at 9:00", "Custom…"};

/// The time that an option stands for; absent for `custom`, whose time the user gives, and for no option.
std::optional<Instant> timeOf(std::size_t option, Instant now, const LocalCalendar& calendar);

/// What a new custom reminder begins with: the first full hour that is at least half an hour away.
Instant suggestion(Instant now, const LocalCalendar& calendar);

/// The parts of a time that are chosen one by one, in the order in which they are shown.
enum class Part { day, month, year, hour, minute };
inline constexpr std::array<Part, 5> parts{Part::day, Part::month, Part::year, Part::hour, Part::minute};
inline constexpr int earliestYear = 2000;
inline constexpr int latestYear = 2199;

/// The least and the greatest number of a part. Not every month has the last days.
struct Range {
    int least;
    int most;
};
Range rangeOf(Part part);

/// `steps` days, months, years, hours or steps of five minutes later, earlier when negative, carried over into the
/// larger parts. A month that lacks the day ends on its last one. Stays within the years above.
Instant stepped(Instant time, Part part, int steps, const LocalCalendar& calendar);

/// With that part set to `value`, the others kept; a day that the month lacks becomes its last one. Absent when
/// the value is out of the part's range.
std::optional<Instant> withPart(Instant time, Part part, int value, const LocalCalendar& calendar);

/// A part as a number, within its range.
int partValue(Instant time, Part part, const LocalCalendar& calendar);

/// A part as it is shown, such as "Sun 22", "Nov", "2026", "14" and "05".
std::string partText(Instant time, Part part, const LocalCalendar& calendar);

struct Repetition {
    /// What the todo store calls it; empty for no repetition.
    std::string_view rule;
    std::string_view label;
};
inline constexpr std::array<Repetition, 4> repetitions{
    {{"", "Never"}, {"daily", "Daily"}, {"weekly", "Weekly"}, {"monthly", "Monthly"}}};

}  // namespace sunpane::reminder_times
