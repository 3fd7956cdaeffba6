#include "base/TimeZones.h"

#include <unicode/basictz.h>
#include <unicode/simpletz.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

namespace sunpane {
namespace {

constexpr std::int32_t millisecondsPerSecond = 1000;
constexpr std::int32_t secondsPerHour = 3600;
constexpr std::int32_t secondsPerDay = 86400;
constexpr int daysPerWeek = 7;
constexpr int daysPerYear = 365;
constexpr std::array<int, 12> monthLengths{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

icu::UnicodeString toUnicode(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// When the clocks change each year, by the clock as it is until then.
struct Change {
    int month = 1;
    /// 1 to 4, or 5 for the last one of the month; 0 for the date `day`.
    int week = 0;
    /// A weekday from 0 (Sunday) on, or with `week` 0 a day of the month from 1 on.
    int day = 1;
    /// Seconds after midnight; may lie in other days.
    std::int32_t time = 2 * secondsPerHour;
};

struct Rules {
    /// Seconds east of UTC.
    std::int32_t standard = 0;
    struct Summer {
        std::int32_t offset = 0;
        Change start{3, 2, 0};
        Change end{11, 1, 0};
    };
    std::optional<Summer> summer;
};

/// Reads rules from the front of a text.
class RuleReader {
public:
    explicit RuleReader(std::string_view text) : rest_(text) {}

    std::optional<Rules> rules() {
        Rules result;
        if (!takeName() || !takeOffset(result.standard)) return std::nullopt;
        if (rest_.empty()) return result;
        Rules::Summer summer;
        summer.offset = result.standard + secondsPerHour;
        if (!takeName()) return std::nullopt;
        if (!rest_.empty() && rest_.front() != ',' && !takeOffset(summer.offset)) return std::nullopt;
        if (!rest_.empty()) {
            summer.start = summer.end = {};
            if (!takeChange(summer.start) || !takeChange(summer.end) || !rest_.empty()) return std::nullopt;
        }
        result.summer = summer;
        return result;
    }

private:
    bool take(char expected) {
        if (!rest_.starts_with(expected)) return false;
        rest_.remove_prefix(1);
        return true;
    }

    bool takeNumber(int& number, int least, int most) {
        if (rest_.empty() || !isDigit(rest_.front())) return false;
        number = 0;
        while (!rest_.empty() && isDigit(rest_.front())) {
            number = number * 10 + (rest_.front() - '0');
            if (number > most) return false;
            rest_.remove_prefix(1);
        }
        return number >= least;
    }

    bool takeName() {
        constexpr std::ptrdiff_t shortest = 3;
        const bool quoted = take('<');
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), [&](char c) {
            return isLetter(c) || (quoted && (isDigit(c) || c == '+' || c == '-'));
        });
        const auto length = end - rest_.begin();
        rest_.remove_prefix(static_cast<std::size_t>(length));
        return length >= shortest && (!quoted || take('>'));
    }

    // Hours, minutes and seconds with a sign; the latter two may be missing.
    bool takeTime(std::int32_t& seconds, int mostHours) {
        const bool negative = take('-');
        if (!negative) take('+');
        int hours = 0;
        int minutes = 0;
        int rest = 0;
        if (!takeNumber(hours, 0, mostHours)) return false;
        if (take(':') && !takeNumber(minutes, 0, 59)) return false;
        if (take(':') && !takeNumber(rest, 0, 59)) return false;
        seconds = (negative ? -1 : 1) * (hours * secondsPerHour + minutes * 60 + rest);
        return true;
    }

    // Written as what must be added to local time, which is to the west.
    bool takeOffset(std::int32_t& east) {
        if (!takeTime(east, 24)) return false;
        east = -east;
        return true;
    }

    bool takeChange(Change& change) {
        if (!take(',') || !takeDay(change)) return false;
        constexpr int mostHours = 167;
        return !take('/') || takeTime(change.time, mostHours);
    }

    bool takeDay(Change& change) {
        if (take('M')) {
            return takeNumber(change.month, 1, 12) && take('.') && takeNumber(change.week, 1, 5) && take('.') &&
                   takeNumber(change.day, 0, daysPerWeek - 1);
        }
        // With a J, 29 February is never counted. Without, it is, which no rule of ICU can say; what comes after it is
        // a day late in leap years then.
        int dayOfYear = 0;
        if (take('J')) {
            if (!takeNumber(dayOfYear, 1, daysPerYear)) return false;
        } else {
            if (!takeNumber(dayOfYear, 0, daysPerYear)) return false;
            dayOfYear = std::min(dayOfYear + 1, daysPerYear);
        }
        change.month = 1;
        for (const int length : monthLengths) {
            if (dayOfYear <= length) break;
            dayOfYear -= length;
            ++change.month;
        }
        change.week = 0;
        change.day = dayOfYear;
        return true;
    }

    std::string_view rest_;
};

/// A change as ICU has it, where the time is one of that very day.
class IcuChange {
public:
    explicit IcuChange(const Change& change) : change_(change) {
        while (change_.time < 0)
            shift(-1);
        while (change_.time > secondsPerDay)
            shift(1);
    }

    /// False when the time moves the change into the month before, which ICU would misread.
    bool isInItsMonth() const { return date() >= 1; }

    void setStart(icu::SimpleTimeZone& zone, UErrorCode& status) const {
        const auto time = change_.time * millisecondsPerSecond;
        if (change_.week == 0) return zone.setStartRule(month(), date(), time, status);
        zone.setStartRule(month(), date(), weekday(), time, isAtLeast(), status);
    }

    void setEnd(icu::SimpleTimeZone& zone, UErrorCode& status) const {
        const auto time = change_.time * millisecondsPerSecond;
        if (change_.week == 0) return zone.setEndRule(month(), date(), time, status);
        zone.setEndRule(month(), date(), weekday(), time, isAtLeast(), status);
    }

private:
    void shift(int days) {
        change_.time -= days * secondsPerDay;
        shift_ += days;
    }
    int month() const { return change_.month - 1; }
    int weekday() const { return (change_.day + shift_ + 2 * daysPerWeek) % daysPerWeek + 1; }
    // The last week is counted from the month's end, and, moved past it, from seven days before.
    bool isAtLeast() const { return change_.week != 5 || shift_ > 0; }
    int date() const {
        const int length = monthLengths.at(static_cast<std::size_t>(month()));
        if (change_.week == 0) return change_.day + shift_;
        if (change_.week < 5) return (change_.week - 1) * daysPerWeek + 1 + shift_;
        return (isAtLeast() ? length - daysPerWeek + 1 : length) + shift_;
    }

    Change change_;
    int shift_ = 0;
};

std::unique_ptr<icu::TimeZone> toZone(const Rules& rules, const icu::UnicodeString& id) {
    auto steady = std::make_unique<icu::SimpleTimeZone>(rules.standard * millisecondsPerSecond, id);
    if (!rules.summer || rules.summer->offset == rules.standard) return steady;
    // Some have winter time as the exception; to ICU the exception is always later.
    std::int32_t lower = rules.standard;
    Rules::Summer summer = *rules.summer;
    if (summer.offset < lower) {
        std::swap(summer.offset, lower);
        std::swap(summer.start, summer.end);
    }
    const IcuChange start(summer.start);
    const IcuChange end(summer.end);
    if (!start.isInItsMonth() || !end.isInItsMonth()) return steady;
    auto zone = std::make_unique<icu::SimpleTimeZone>(lower * millisecondsPerSecond, id);
    UErrorCode status = U_ZERO_ERROR;
    zone->setDSTSavings((summer.offset - lower) * millisecondsPerSecond, status);
    start.setStart(*zone, status);
    end.setEnd(*zone, status);
    // A change that its time moves into the next month is more than ICU can say.
    if (U_FAILURE(status)) return steady;
    return zone;
}

}  // namespace

bool isZoneName(std::string_view name) {
    icu::UnicodeString canonical;
    UBool isInDatabase = 0;
    UErrorCode status = U_ZERO_ERROR;
    icu::TimeZone::getCanonicalID(toUnicode(name), canonical, isInDatabase, status);
    return U_SUCCESS(status) && isInDatabase != 0 && canonical != UNICODE_STRING_SIMPLE("Etc/Unknown");
}

std::unique_ptr<icu::TimeZone> makeTimeZone(std::string_view nameOrRules) {
    // Far longer than any name or rules; hostile files bring such.
    constexpr std::size_t longest = 256;
    if (nameOrRules.empty() || nameOrRules.size() > longest) return nullptr;
    const icu::UnicodeString id = toUnicode(nameOrRules);
    if (isZoneName(nameOrRules)) return std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(id));
    if (const auto rules = RuleReader(nameOrRules).rules()) return toZone(*rules, id);
    return nullptr;
}

}  // namespace sunpane
