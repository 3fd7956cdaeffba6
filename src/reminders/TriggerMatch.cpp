#include "reminders/TriggerMatch.h"

#include <algorithm>

namespace sunpane {
namespace {

constexpr int lastYear = 9999;
// 29 February comes every 8 years at least.
constexpr int maximumDays = 366 * 8 + 2;

// One component of a trigger: the values that it may have.
struct Range {
    int first;
    int last;
};

Range rangeOf(const std::optional<int>& component, Range all, bool isLeast) {
    if (component) return {*component, *component};
    return isLeast ? Range{all.first, all.first} : all;
}

struct Ranges {
    Range month, day, hour, minute, second;
};

// Components smaller than the smallest one set take their least value, others that are not set take any.
Ranges rangesOf(const CalendarTrigger& trigger) {
    const bool aboveMinute = !trigger.second;
    const bool aboveHour = aboveMinute && !trigger.minute;
    const bool aboveDay = aboveHour && !trigger.hour;
    const bool aboveMonth = aboveDay && !trigger.day && !trigger.weekday;
    const bool aboveYear = aboveMonth && !trigger.month;
    return {rangeOf(trigger.month, {1, 12}, aboveYear), rangeOf(trigger.day, {1, 31}, aboveMonth),
            rangeOf(trigger.hour, {0, 23}, aboveDay), rangeOf(trigger.minute, {0, 59}, aboveHour),
            rangeOf(trigger.second, {0, 59}, aboveMinute)};
}

bool contains(Range range, int value) {
    return range.first <= value && value <= range.last;
}

// The first time of `day` that fits and comes after `after`.
std::optional<CivilTime> firstTime(const Ranges& ranges, CivilDay day, const CivilTime& after) {
    CivilTime time{day};
    for (time.hour = ranges.hour.first; time.hour <= ranges.hour.last; ++time.hour) {
        for (time.minute = ranges.minute.first; time.minute <= ranges.minute.last; ++time.minute) {
            for (time.second = ranges.second.first; time.second <= ranges.second.last; ++time.second) {
                if (time > after) return time;
            }
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<CivilTime> nextMatch(const CalendarTrigger& trigger, const CivilTime& after) {
    const bool isEmpty = !trigger.year && !trigger.month && !trigger.day && !trigger.weekday && !trigger.hour &&
                         !trigger.minute && !trigger.second;
    if (isEmpty || !isValid(trigger)) return std::nullopt;
    const Ranges ranges = rangesOf(trigger);
    CivilDay day = after.day;
    if (trigger.year) day = std::max(day, CivilDay{*trigger.year, 1, 1});
    for (int i = 0; i < maximumDays && day.year <= trigger.year.value_or(lastYear); ++i, day = addingDays(day, 1)) {
        if (!contains(ranges.month, day.month) || !contains(ranges.day, day.day)) continue;
        if (trigger.weekday && weekday(day) != *trigger.weekday) continue;
        if (const auto time = firstTime(ranges, day, after)) return time;
    }
    return std::nullopt;
}

bool matches(const CalendarTrigger& trigger, const CivilTime& time) {
    const Ranges ranges = rangesOf(trigger);
    return trigger.year.value_or(time.day.year) == time.day.year && contains(ranges.month, time.day.month) &&
           contains(ranges.day, time.day.day) && trigger.weekday.value_or(weekday(time.day)) == weekday(time.day) &&
           contains(ranges.hour, time.hour) && contains(ranges.minute, time.minute) &&
           contains(ranges.second, time.second);
}

bool isValid(const CalendarTrigger& trigger) {
    const auto within = [](const std::optional<int>& component, int first, int last) {
        return !component || (first <= *component && *component <= last);
    };
    return within(trigger.year, 1, lastYear) && within(trigger.month, 1, 12) && within(trigger.day, 1, 31) &&
           within(trigger.weekday, 1, 7) && within(trigger.hour, 0, 23) && within(trigger.minute, 0, 59) &&
           within(trigger.second, 0, 59);
}

}  // namespace sunpane
