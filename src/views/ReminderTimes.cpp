#include "views/ReminderTimes.h"

#include <algorithm>

namespace sunpane::reminder_times {
namespace {

constexpr Seconds hour = 3600;
constexpr Seconds minuteStep = 300;

int daysInMonth(int year, int month) {
    const CivilDay next = month == 12 ? CivilDay{year + 1, 1, 1} : CivilDay{year, month + 1, 1};
    return addingDays(next, -1).day;
}

bool isKnownYear(int year) {
    return year >= earliestYear && year <= latestYear;
}

Instant inMonth(CivilTime reading, int year, int month, const LocalCalendar& calendar) {
    reading.day.year = year;
    reading.day.month = month;
    reading.day.day = std::min(reading.day.day, daysInMonth(year, month));
    return calendar.instant(reading);
}

}  // namespace

std::optional<Instant> timeOf(std::size_t option, Instant now, const LocalCalendar& calendar) {
    switch (option) {
        case inOneHour:
            return now + hour;
        case inThreeHours:
            return now + 3 * hour;
        case tomorrowAtNine: {
            const auto tomorrow = calendar.startOfDay(addingDays(calendar.day(now), 1));
            return tomorrow ? std::optional(calendar.settingTime(*tomorrow, 9, 0)) : std::nullopt;
        }
        default:
            return std::nullopt;
    }
}

Instant suggestion(Instant now, const LocalCalendar& calendar) {
    CivilTime reading = calendar.civilTime(now + hour / 2 + hour - 1);
    reading.minute = 0;
    reading.second = 0;
    // The clock may show this hour a second time, or have skipped it.
    const Instant first = calendar.instant(reading);
    return first >= now + hour / 2 ? first : calendar.secondInstant(reading).value_or(first + hour);
}

Range rangeOf(Part part) {
    switch (part) {
        case Part::day:
            return {1, 31};
        case Part::month:
            return {1, 12};
        case Part::year:
            return {earliestYear, latestYear};
        case Part::hour:
            return {0, 23};
        case Part::minute:
            return {0, 59};
    }
    return {0, 0};
}

Instant stepped(Instant time, Part part, int steps, const LocalCalendar& calendar) {
    const CivilTime reading = calendar.civilTime(time);
    Instant result = time;
    switch (part) {
        case Part::day:
            result = calendar.addingDays(time, steps);
            break;
        case Part::month: {
            const int months = reading.day.year * 12 + reading.day.month - 1 + steps;
            result = inMonth(reading, months / 12, months % 12 + 1, calendar);
            break;
        }
        case Part::year:
            result = inMonth(reading, reading.day.year + steps, reading.day.month, calendar);
            break;
        // In elapsed time, or a reading that the clock skips could not be passed.
        case Part::hour:
            result = time + steps * hour;
            break;
        case Part::minute: {
            const int into = reading.minute * 60 % static_cast<int>(minuteStep) + reading.second;
            // The first step back goes to the beginning of this one.
            const bool backFromWithin = steps < 0 && into > 0;
            result = time - into + (steps + (backFromWithin ? 1 : 0)) * minuteStep;
            break;
        }
    }
    return isKnownYear(calendar.day(result).year) ? result : time;
}

std::optional<Instant> withPart(Instant time, Part part, int value, const LocalCalendar& calendar) {
    const auto [least, most] = rangeOf(part);
    if (value < least || value > most) return std::nullopt;
    CivilTime reading = calendar.civilTime(time);
    switch (part) {
        case Part::day:
            reading.day.day = std::min(value, daysInMonth(reading.day.year, reading.day.month));
            return calendar.instant(reading);
        case Part::month:
            return inMonth(reading, reading.day.year, value, calendar);
        case Part::year:
            return inMonth(reading, value, reading.day.month, calendar);
        case Part::hour:
            reading.hour = value;
            return calendar.instant(reading);
        case Part::minute:
            reading.minute = value;
            reading.second = 0;
            return calendar.instant(reading);
    }
    return std::nullopt;
}

int partValue(Instant time, Part part, const LocalCalendar& calendar) {
    const CivilTime reading = calendar.civilTime(time);
    switch (part) {
        case Part::day:
            return reading.day.day;
        case Part::month:
            return reading.day.month;
        case Part::year:
            return reading.day.year;
        case Part::hour:
            return reading.hour;
        case Part::minute:
            return reading.minute;
    }
    return 0;
}

std::string partText(Instant time, Part part, const LocalCalendar& calendar) {
    switch (part) {
        case Part::day:
            return calendar.format(time, "EEE d");
        case Part::month:
            return calendar.format(time, "MMM");
        case Part::year:
            return calendar.format(time, "yyyy");
        case Part::hour:
            return calendar.format(time, "HH");
        case Part::minute:
            return calendar.format(time, "mm");
    }
    return {};
}

}  // namespace sunpane::reminder_times
