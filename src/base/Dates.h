#pragma once

#include <compare>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Clock.h"

namespace sunpane {

/// A day of the Gregorian calendar.
struct CivilDay {
    int year = 1;
    int month = 1;
    int day = 1;
    friend auto operator<=>(const CivilDay&, const CivilDay&) = default;
};

/// The day `days` later; earlier when negative.
CivilDay addingDays(CivilDay day, int days);
/// 1 (Sunday) to 7 (Saturday).
int weekday(CivilDay day);

/// What a calendar and a clock on the wall show.
struct CivilTime {
    CivilDay day;
    int hour = 0;
    int minute = 0;
    int second = 0;
    friend auto operator<=>(const CivilTime&, const CivilTime&) = default;
};

/// Calendar arithmetic and date patterns in one time zone and locale, taken from a clock at construction. Cheap to
/// make and meant to be made anew where it is used, so that a change of zone is followed. Use one on one thread.
///
/// Instants farther than 270,000 years from ours count as those that far.
class LocalCalendar {
public:
    explicit LocalCalendar(const Clock& clock);
    /// `timeZone` is as for `makeTimeZone`; an unknown one counts as UTC.
    LocalCalendar(std::string_view timeZone, std::string_view locale);
    ~LocalCalendar();
    LocalCalendar(LocalCalendar&&) noexcept;
    LocalCalendar& operator=(LocalCalendar&&) noexcept;

    /// The first instant of a day: midnight, or where the clocks skip midnight, the instant at which they do. Absent
    /// for a day that does not exist, such as 30 February.
    std::optional<Instant> startOfDay(CivilDay day) const;
    /// The first instant of the day that `instant` falls on.
    Instant startOfDay(Instant instant) const;
    CivilDay day(Instant instant) const;
    bool isSameDay(Instant a, Instant b) const { return day(a) == day(b); }

    /// `days` calendar days later at the same time of day, or, where that is skipped, as much later as the clocks skip.
    Instant addingDays(Instant instant, int days) const;

    /// That time of the day that `instant` falls on, moved forward when the clocks skip it.
    Instant settingTime(Instant instant, int hour, int minute) const;

    /// What the clock shows at `instant`, the fraction of a second dropped.
    CivilTime civilTime(Instant instant) const;
    /// The first instant at which the clock shows `time`, a day that exists and a time of it, or, when it skips that
    /// time, the instant at which it does.
    Instant instant(const CivilTime& time) const;
    /// The second instant at which the clock shows `time`; absent when it does so once at most.
    std::optional<Instant> secondInstant(const CivilTime& time) const;

    /// Reads ISO 8601 as in "2026-11-22T09:30:00+01:00". The time or its seconds may be left out, the offset may be
    /// "Z"; without one the text means local time. Anything else: absent.
    std::optional<Instant> parseIso8601(std::string_view text) const;

    /// Formats with a pattern of Unicode Technical Standard 35 ("yyyy-MM-dd"). An absent locale means the user's.
    std::string format(Instant instant, std::string_view pattern,
                       std::optional<std::string_view> locale = std::nullopt) const;

    /// Date and time in the user's way of writing, such as "22 Nov 2026, 15:00".
    std::string dateAndTime(Instant instant) const;

    /// "2026-11-22": the day in the Gregorian calendar with ASCII digits, whatever the user's locale.
    std::string dayString(Instant instant) const;

    /// ISO 8601 with the local offset to the second, such as "2026-11-22T00:00:00+01:00".
    std::string iso8601(Instant instant) const;

private:
    struct Zone;
    std::unique_ptr<Zone> zone_;
    std::string locale_;
};

/// ISO 8601 in UTC, such as "2026-11-16T07:42:05Z". The fraction of a second is dropped.
std::string iso8601Utc(Instant instant);

}  // namespace sunpane
