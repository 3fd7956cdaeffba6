#include "base/Dates.h"

#include <unicode/basictz.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "base/TimeZones.h"

namespace sunpane {
namespace {

constexpr double millisecondsPerDay = 86400000;

icu::UnicodeString toUnicode(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::string toUtf8(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

// Files may hold instants that no calendar counts in days; they count as the farthest that calendars here reach.
UDate toUDate(Instant instant) {
    constexpr UDate farthest = 8.64e15;
    return std::clamp(instant.unixTime() * 1000, -farthest, farthest);
}

Instant fromUDate(UDate date) {
    return Instant::fromUnix(date / 1000);
}

icu::Locale toLocale(std::string_view name) {
    return icu::Locale(std::string(name).c_str());
}

// Days between 1 January 1970 and a day of the proleptic Gregorian calendar (H. Hinnant, "chrono-Compatible Low-Level
// Date Algorithms").
std::int64_t daysFromCivil(CivilDay civil) {
    const std::int64_t year = civil.month <= 2 ? civil.year - 1 : civil.year;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * (civil.month + (civil.month > 2 ? -3 : 9)) + 2) / 5 + civil.day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

CivilDay civilFromDays(std::int64_t days) {
    days += 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;
    const int day = static_cast<int>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
    const int month = static_cast<int>(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
    return {static_cast<int>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0)), month, day};
}

double localMilliseconds(const CivilTime& time) {
    const double seconds = time.hour * 3600.0 + time.minute * 60.0 + time.second;
    return static_cast<double>(daysFromCivil(time.day)) * millisecondsPerDay + seconds * 1000;
}

// Reads exactly `digits` digits at `position` and moves past them.
std::optional<int> takeNumber(std::string_view text, std::size_t& position, std::size_t digits) {
    if (text.size() < position + digits) return std::nullopt;
    int number = 0;
    for (const char c : text.substr(position, digits)) {
        if (c < '0' || c > '9') return std::nullopt;
        number = number * 10 + (c - '0');
    }
    position += digits;
    return number;
}

bool take(std::string_view text, std::size_t& position, char expected) {
    if (position >= text.size() || text[position] != expected) return false;
    ++position;
    return true;
}

// The rest of an ISO 8601 text from its offset on, in seconds; absent when it has none of the known forms.
std::optional<double> takeOffset(std::string_view text, std::size_t& position) {
    if (take(text, position, 'Z')) return 0;
    const bool negative = text.substr(position).starts_with('-');
    if (!negative && !text.substr(position).starts_with('+')) return std::nullopt;
    ++position;
    const auto hours = takeNumber(text, position, 2);
    take(text, position, ':');
    const auto minutes = takeNumber(text, position, 2);
    if (!hours || !minutes || *hours > 23 || *minutes > 59) return std::nullopt;
    return (negative ? -60.0 : 60.0) * (*hours * 60 + *minutes);
}

}  // namespace

CivilDay addingDays(CivilDay day, int days) {
    return civilFromDays(daysFromCivil(day) + days);
}

int weekday(CivilDay day) {
    // 1 January 1970 was a Thursday.
    const std::int64_t sinceThursday = daysFromCivil(day) % 7;
    return static_cast<int>((sinceThursday + 7 + 4) % 7) + 1;
}

// A stretch of time in which the zone's offset from UTC stays the same (ms).
struct ConstantOffset {
    UDate from = 0;
    UDate to = 0;
    double offset = 0;
};

struct LocalCalendar::Zone {
    std::unique_ptr<icu::TimeZone> timeZone;
    // The stretch that was asked for last: days are mostly looked up near each other, and asking ICU takes long.
    mutable ConstantOffset last;
    // Making a formatter costs a hundred times what using it does, and the same pattern tends to come again.
    std::string formatKey;
    std::unique_ptr<icu::SimpleDateFormat> formatter;

    double offset(UDate date) const {
        std::int32_t raw = 0;
        std::int32_t daylight = 0;
        UErrorCode status = U_ZERO_ERROR;
        timeZone->getOffset(date, 0, raw, daylight, status);
        return raw + daylight;
    }

    // The earliest instant whose local reading is `localMilliseconds`, or, when the clocks skip that reading, the
    // instant at which they do.
    UDate fromLocal(double localMilliseconds) const {
        const UDate guess = localMilliseconds - last.offset;
        // Clocks jump by a day at most, so that farther from either end no other instant has this reading.
        if (guess >= last.from + 2 * millisecondsPerDay && guess < last.to - 2 * millisecondsPerDay) return guess;
        const auto* basic = dynamic_cast<const icu::BasicTimeZone*>(timeZone.get());
        if (basic == nullptr) return localMilliseconds - offset(localMilliseconds);
        std::int32_t raw = 0;
        std::int32_t daylight = 0;
        UErrorCode status = U_ZERO_ERROR;
        basic->getOffsetFromLocal(localMilliseconds, UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER, raw, daylight, status);
        const UDate date = localMilliseconds - raw - daylight;
        if (date + offset(date) == localMilliseconds) {
            remember(*basic, date, localMilliseconds - date);
            return date;
        }
        // Skipped: read with the offset before the gap, `date` lies after the jump by the part of the gap that
        // `localMilliseconds` is into.
        icu::TimeZoneTransition transition;
        if (basic->getPreviousTransition(date, true, transition) != 0) return transition.getTime();
        return date;
    }

private:
    void remember(const icu::BasicTimeZone& zone, UDate date, double offset) const {
        constexpr UDate never = 1e18;
        icu::TimeZoneTransition transition;
        last.from = zone.getPreviousTransition(date, true, transition) != 0 ? transition.getTime() : -never;
        last.to = zone.getNextTransition(date, false, transition) != 0 ? transition.getTime() : never;
        last.offset = offset;
    }
};

LocalCalendar::LocalCalendar(const Clock& clock) : LocalCalendar(clock.timeZone(), clock.locale()) {}

LocalCalendar::LocalCalendar(std::string_view timeZone, std::string_view locale)
    : zone_(std::make_unique<Zone>()), locale_(locale) {
    zone_->timeZone = makeTimeZone(timeZone);
    if (!zone_->timeZone) zone_->timeZone.reset(icu::TimeZone::getGMT()->clone());
    assert(zone_->timeZone);
}

LocalCalendar::~LocalCalendar() = default;
LocalCalendar::LocalCalendar(LocalCalendar&&) noexcept = default;
LocalCalendar& LocalCalendar::operator=(LocalCalendar&&) noexcept = default;

std::optional<Instant> LocalCalendar::startOfDay(CivilDay day) const {
    if (day.year < 1 || day.month < 1 || day.month > 12 || day.day < 1) return std::nullopt;
    const std::int64_t days = daysFromCivil(day);
    if (civilFromDays(days) != day) return std::nullopt;
    return fromUDate(zone_->fromLocal(static_cast<double>(days) * millisecondsPerDay));
}

Instant LocalCalendar::startOfDay(Instant instant) const {
    const auto start = startOfDay(day(instant));
    return start.value_or(instant);
}

CivilDay LocalCalendar::day(Instant instant) const {
    const UDate date = toUDate(instant);
    return civilFromDays(static_cast<std::int64_t>(std::floor((date + zone_->offset(date)) / millisecondsPerDay)));
}

Instant LocalCalendar::addingDays(Instant instant, int days) const {
    const UDate date = toUDate(instant);
    const double local = date + zone_->offset(date) + days * millisecondsPerDay;
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t raw = 0;
    std::int32_t daylight = 0;
    const auto* basic = dynamic_cast<const icu::BasicTimeZone*>(zone_->timeZone.get());
    if (basic == nullptr) return fromUDate(local - zone_->offset(local));
    basic->getOffsetFromLocal(local, UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER, raw, daylight, status);
    return fromUDate(local - raw - daylight);
}

Instant LocalCalendar::settingTime(Instant instant, int hour, int minute) const {
    const double midnight = static_cast<double>(daysFromCivil(day(instant))) * millisecondsPerDay;
    return fromUDate(zone_->fromLocal(midnight + (hour * 60.0 + minute) * 60000.0));
}

CivilTime LocalCalendar::civilTime(Instant instant) const {
    const double date = std::floor(toUDate(instant) / 1000) * 1000;
    const double local = date + zone_->offset(date);
    const double days = std::floor(local / millisecondsPerDay);
    const auto seconds = static_cast<int>((local - days * millisecondsPerDay) / 1000);
    return {civilFromDays(static_cast<std::int64_t>(days)), seconds / 3600, seconds / 60 % 60, seconds % 60};
}

Instant LocalCalendar::instant(const CivilTime& time) const {
    return fromUDate(zone_->fromLocal(localMilliseconds(time)));
}

std::optional<Instant> LocalCalendar::secondInstant(const CivilTime& time) const {
    const auto* basic = dynamic_cast<const icu::BasicTimeZone*>(zone_->timeZone.get());
    if (basic == nullptr) return std::nullopt;
    const double local = localMilliseconds(time);
    std::int32_t raw = 0;
    std::int32_t daylight = 0;
    UErrorCode status = U_ZERO_ERROR;
    basic->getOffsetFromLocal(local, UCAL_TZ_LOCAL_LATTER, UCAL_TZ_LOCAL_LATTER, raw, daylight, status);
    const UDate date = local - raw - daylight;
    const bool isShown = date + zone_->offset(date) == local;
    return isShown && date > zone_->fromLocal(local) ? std::optional(fromUDate(date)) : std::nullopt;
}

std::optional<Instant> LocalCalendar::parseIso8601(std::string_view text) const {
    std::size_t at = 0;
    CivilTime time;
    const auto year = takeNumber(text, at, 4);
    const bool dashed = take(text, at, '-');
    const auto month = takeNumber(text, at, 2);
    const bool dashedAgain = take(text, at, '-');
    const auto day = takeNumber(text, at, 2);
    if (!year || !month || !day || !dashed || !dashedAgain) return std::nullopt;
    time.day = {*year, *month, *day};
    if (!startOfDay(time.day)) return std::nullopt;
    if (at == text.size()) return instant(time);

    if (!take(text, at, 'T') && !take(text, at, ' ')) return std::nullopt;
    const auto hour = takeNumber(text, at, 2);
    const bool colon = take(text, at, ':');
    const auto minute = takeNumber(text, at, 2);
    const auto second = take(text, at, ':') ? takeNumber(text, at, 2) : std::optional(0);
    if (!hour || !colon || !minute || !second || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
    time = {time.day, *hour, *minute, *second};
    if (at == text.size()) return instant(time);
    const auto offset = takeOffset(text, at);
    if (!offset || at != text.size()) return std::nullopt;
    return LocalCalendar("UTC", locale_).instant(time) - *offset;
}

std::string LocalCalendar::format(Instant instant, std::string_view pattern,
                                  std::optional<std::string_view> locale) const {
    std::string key = std::string(locale.value_or(locale_)) + '\n' + std::string(pattern);
    if (!zone_->formatter || zone_->formatKey != key) {
        UErrorCode status = U_ZERO_ERROR;
        auto formatter =
            std::make_unique<icu::SimpleDateFormat>(toUnicode(pattern), toLocale(locale.value_or(locale_)), status);
        if (U_FAILURE(status)) return {};
        formatter->setTimeZone(*zone_->timeZone);
        zone_->formatter = std::move(formatter);
        zone_->formatKey = std::move(key);
    }
    icu::UnicodeString result;
    return toUtf8(zone_->formatter->format(toUDate(instant), result));
}

std::string LocalCalendar::dateAndTime(Instant instant) const {
    const std::unique_ptr<icu::DateFormat> formatter(
        icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium, icu::DateFormat::kShort, toLocale(locale_)));
    if (!formatter) return {};
    formatter->setTimeZone(*zone_->timeZone);
    icu::UnicodeString result;
    return toUtf8(formatter->format(toUDate(instant), result));
}

std::string LocalCalendar::dayString(Instant instant) const {
    const CivilDay civil = day(instant);
    std::array<char, 48> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d", civil.year, civil.month, civil.day);
    return buffer.data();
}

std::string LocalCalendar::iso8601(Instant instant) const {
    return format(instant, "yyyy-MM-dd'T'HH:mm:ssxxx", "en_US_POSIX");
}

std::string iso8601Utc(Instant instant) {
    return LocalCalendar("UTC", "en_US_POSIX").format(instant, "yyyy-MM-dd'T'HH:mm:ss'Z'");
}

}  // namespace sunpane
