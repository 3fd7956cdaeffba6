#include "core/DateDetector.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "base/Dates.h"
#include "core/DateWords.h"

namespace sunpane {
namespace {

using date_words::Meaning;
using date_words::Token;

constexpr int firstYear = 1970;
constexpr int lastYear = 2199;
// What a plan for a day without a time of day begins with.
constexpr int defaultHour = 12;
// "At 3" and "4:30" mean the afternoon up to this hour, "04:30" does not.
constexpr int latestAfternoonHour = 6;

template <typename Value>
struct Found {
    Value value;
    std::size_t end = 0;
};
template <typename Value>
using Match = std::optional<Found<Value>>;

struct DayFound {
    CivilDay day;
    // Whether it is a weekday's next occurrence, which may be today.
    bool isComingWeekday = false;
    std::optional<int> hour;
    bool isWeak = false;
};

struct TimeFound {
    int hour = 0;
    int minute = 0;
    // Whether nothing says before or after noon.
    bool isOpen = false;
    // Whether it is a number alone.
    bool isBare = false;
};

struct Span {
    TimeFound start;
    int minutes = 0;  // 0 when only the start is given
};

/// Reads one text.
class Reader {
public:
    Reader(std::vector<Token> tokens, const date_words::Vocabulary& words, const LocalCalendar& calendar, Instant now)
        : tokens_(std::move(tokens)), words_(words), calendar_(calendar), now_(now), today_(calendar.day(now)) {}

    std::optional<DetectedDate> first() const {
        for (std::size_t i = 0; i < tokens_.size(); ++i) {
            auto found = dateAt(i);
            if (!found) continue;
            if (found->value.duration == 0) found->value.duration = durationAround(i, found->end);
            return found->value;
        }
        return std::nullopt;
    }

private:
    const Token& at(std::size_t i) const {
        static const Token end;
        return i < tokens_.size() ? tokens_[i] : end;
    }
    bool is(std::size_t i, std::string_view text) const { return at(i).is(text); }
    bool touches(std::size_t i) const { return at(i).kind != Token::Kind::end && !at(i).followsSpace; }

    template <std::size_t n>
    bool isAny(std::size_t i, const std::array<std::string_view, n>& texts) const {
        return std::any_of(texts.begin(), texts.end(), [&](std::string_view text) { return is(i, text); });
    }

    // Whether nothing in front of a number makes it part of a version, a price, a phone number or a name.
    bool startsFreely(std::size_t i) const {
        if (i == 0 || at(i).followsSpace) return true;
        const Token& before = at(i - 1);
        if (before.kind != Token::Kind::sign) return false;
        static constexpr std::array<std::string_view, 15> joining{"/", "-", "+", "#", "$",  "€", "£", "¥",
                                                                  "@", "_", "=", "&", "\\", "~", "^"};
        if (isAny(i - 1, joining)) return false;
        const bool isPoint = before.is(".") || before.is(",") || before.is(":");
        return !isPoint || i < 2 || !at(i - 2).isNumber();
    }
    // The same for what is behind a number or a word that ends before `i`.
    bool endsFreely(std::size_t i) const {
        if (!touches(i)) return true;
        if (at(i).kind != Token::Kind::sign) return false;
        static constexpr std::array<std::string_view, 10> joining{"%", "€", "$", "£", "¥", "_", "@", "/", "+", "="};
        if (isAny(i, joining)) return false;
        if (!touches(i + 1)) return true;
        static constexpr std::array<std::string_view, 4> points{".", ",", ":", "-"};
        return !(isAny(i, points) && at(i + 1).isNumber()) && !(is(i, ":") && at(i + 1).isWord());
    }

    // Past the small words between the parts of a date.
    std::size_t skipping(std::size_t i) const {
        static constexpr std::array<std::string_view, 12> small{"at", "on",   ",",  "the", "@", "around",
                                                                "by", "from", "um", "om",  "à", "·"};
        for (int skipped = 0; skipped < 3 && isAny(i, small); ++skipped)
            ++i;
        return i;
    }

    Match<DetectedDate> dateAt(std::size_t i) const {
        if (auto distant = distanceAt(i)) return distant;
        if (const auto day = dayAt(i)) return withTime(*day);
        const bool from = is(i, "from") || is(i, "between");
        if (const auto span = spanAt(from ? i + 1 : i, from)) {
            const auto day = dayAt(skipping(span->end));
            if (day) return made(day->value, span->value, day->end);
            if (const auto part = partOfToday(skipping(span->end)))
                return made({today_, false, {}, false}, span->value, *part);
            return made({today_, false, {}, false}, span->value, span->end);
        }
        return std::nullopt;
    }

    std::optional<std::size_t> partOfToday(std::size_t i) const {
        if (!is(i, "this") || !date_words::hourOfPartOfDay(at(i + 1))) return std::nullopt;
        return i + 2;
    }

    // "in 2 hours", "in half an hour", "in 3 days at 10:00".
    Match<DetectedDate> distanceAt(std::size_t i) const {
        if (!is(i, "in")) return std::nullopt;
        const auto length = lengthAt(i + 1);
        if (!length) return std::nullopt;
        const auto& [seconds, days, months] = length->value;
        if (days == 0 && months == 0) return Found<DetectedDate>{{now_ + seconds, 0}, length->end};
        CivilTime reading = calendar_.civilTime(calendar_.addingDays(now_, days));
        const int month = reading.day.year * 12 + reading.day.month - 1 + months;
        if (month / 12 > lastYear) return std::nullopt;
        reading.day = {month / 12, month % 12 + 1, reading.day.day};
        while (!calendar_.startOfDay(reading.day))
            --reading.day.day;
        if (auto timed = withExplicitTime({{reading.day, false, {}, false}, length->end})) return timed;
        return Found<DetectedDate>{{calendar_.instant(reading), 0}, length->end};
    }

    // "45 minutes", "1.5 hours", "an hour", "half an hour", "2h".
    Match<date_words::Unit> lengthAt(std::size_t i) const {
        double count = 1;
        if (is(i, "half") && (is(i + 1, "an") || is(i + 1, "a"))) {
            count = 0.5;
            i += 2;
        } else if (is(i, "a") || is(i, "an")) {
            ++i;
        } else if (at(i).isNumber() && at(i).text.size() <= 3) {
            count = at(i++).value;
            const bool isFraction = is(i, ".") && touches(i) && at(i + 1).isNumber() && touches(i + 1);
            if (isFraction && at(i + 1).text.size() <= 2) {
                count += at(i + 1).value / std::pow(10, at(i + 1).text.size());
                i += 2;
            }
        } else {
            return std::nullopt;
        }
        const auto unit = date_words::unitOf(at(i));
        if (!unit || !endsFreely(i + 1)) return std::nullopt;
        const bool isWhole = count == std::floor(count);
        if (!isWhole && unit->seconds == 0) return std::nullopt;
        const int whole = static_cast<int>(count);
        return Found<date_words::Unit>{{unit->seconds * count, unit->days * whole, unit->months * whole}, i + 1};
    }

    // A day, by any of its forms.
    Match<DayFound> dayAt(std::size_t i) const {
        if (auto day = numericDayAt(i)) return day;
        if (auto day = relativeDayAt(i)) return day;
        if (auto day = weekdayAt(i)) return day;
        return monthDayAt(i);
    }

    Match<DayFound> numericDayAt(std::size_t i) const {
        if (!at(i).isNumber() || !startsFreely(i) || !at(i + 2).isNumber() || !at(i + 4).isNumber())
            return std::nullopt;
        for (std::size_t k = i + 1; k < i + 5; ++k) {
            if (!touches(k)) return std::nullopt;
        }
        const Token& sign = at(i + 1);
        if (!at(i + 3).is(sign.text) || !endsFreely(i + 5)) {
            // The T of ISO 8601 ties the time to the day.
            if (!(at(i + 3).is(sign.text) && is(i + 5, "t"))) return std::nullopt;
        }
        const auto digits = [&](std::size_t k) { return at(k).text.size(); };
        CivilDay day;
        if (sign.is("-") && digits(i) == 4 && digits(i + 2) == 2 && digits(i + 4) == 2) {
            day = {at(i).value, at(i + 2).value, at(i + 4).value};
        } else if ((sign.is("/") || sign.is(".")) && digits(i) <= 2 && digits(i + 2) <= 2 && digits(i + 4) == 4) {
            day = {at(i + 4).value, at(i + 2).value, at(i).value};
            const bool monthFirst = sign.is("/") && words_.monthComesFirst();
            if ((monthFirst && day.day <= 12) || day.month > 12) std::swap(day.month, day.day);
        } else {
            return std::nullopt;
        }
        if (!isPlausible(day)) return std::nullopt;
        return Found<DayFound>{{day, false, {}, false}, i + 5};
    }

    Match<DayFound> relativeDayAt(std::size_t i) const {
        if (is(i, "day") && is(i + 1, "after") && is(i + 2, "tomorrow"))
            return Found<DayFound>{{addingDays(today_, 2), false, {}, false}, i + 3};
        if (is(i, "this") && date_words::hourOfPartOfDay(at(i + 1)))
            return Found<DayFound>{{today_, false, date_words::hourOfPartOfDay(at(i + 1)), false}, i + 2};
        if (is(i, "next") && is(i + 1, "week"))
            return Found<DayFound>{{addingDays(today_, 7), false, {}, false}, i + 2};
        const auto meaning = words_.find(at(i), Meaning::Kind::relativeDay);
        if (!meaning || !endsFreely(i + 1)) return std::nullopt;
        DayFound day{addingDays(today_, meaning->value), false, date_words::hourOfPartOfDay(at(i)), false};
        return Found<DayFound>{day, i + 1};
    }

    Match<DayFound> weekdayAt(std::size_t i) const {
        const bool isNext = is(i, "next");
        const bool isNamed = isNext || is(i, "this") || is(i, "on") || is(i, "coming") || is(i, "by") || is(i, "until");
        const std::size_t name = isNamed ? i + 1 : i;
        const auto meaning = words_.find(at(name), Meaning::Kind::weekday);
        if (!meaning) return std::nullopt;
        std::size_t end = name + 1;
        if (is(end, ".") && touches(end)) ++end;
        if (!endsFreely(end)) return std::nullopt;
        // A date behind it says more.
        if (auto exact = monthDayAt(skipping(end))) return exact;
        if (auto exact = numericDayAt(skipping(end))) return exact;
        int ahead = (meaning->value - weekday(today_) + 7) % 7;
        if (isNext && ahead == 0) ahead = 7;
        return Found<DayFound>{{addingDays(today_, ahead), !isNext, {}, meaning->isWeak && !isNamed}, end};
    }

    // "16 Nov", "16. November 2026", "16th of November", "Nov 16", "November 16th, 2026".
    Match<DayFound> monthDayAt(std::size_t i) const {
        const bool dayFirst = at(i).isNumber();
        std::size_t k = i;
        int day = 0;
        if (dayFirst) {
            if (!takeDayNumber(k, day)) return std::nullopt;
            if (is(k, "of")) ++k;
        }
        const auto month = words_.find(at(k), Meaning::Kind::month);
        if (!month || (month->isWeak && !at(k).isCapitalised)) return std::nullopt;
        ++k;
        if (is(k, ".") && touches(k)) ++k;
        if (!dayFirst && (!takeDayNumber(k, day) || !endsFreely(k))) return std::nullopt;
        if (dayFirst && touches(k) && at(k).kind != Token::Kind::sign) return std::nullopt;
        const std::size_t year = is(k, ",") ? k + 1 : k;
        if (at(year).isNumber() && at(year).text.size() == 4 && at(year).followsSpace && endsFreely(year + 1)) {
            const CivilDay exact{at(year).value, month->value, day};
            if (isPlausible(exact)) return Found<DayFound>{{exact, false, {}, false}, year + 1};
        }
        const auto nearest = nearestDay(month->value, day);
        if (!nearest) return std::nullopt;
        return Found<DayFound>{{*nearest, false, {}, false}, k};
    }

    // "16", "16th", "16.".
    bool takeDayNumber(std::size_t& i, int& day) const {
        const Token& number = at(i);
        if (!number.isNumber() || number.text.size() > 2 || number.value < 1 || number.value > 31) return false;
        if (!startsFreely(i)) return false;
        std::size_t next = i + 1;
        static constexpr std::array<std::string_view, 4> endings{"st", "nd", "rd", "th"};
        const bool hasEnding = touches(next) && isAny(next, endings);
        const bool hasPoint = touches(next) && is(next, ".") && at(next + 1).isWord() && at(next + 1).followsSpace;
        if (hasEnding || hasPoint) {
            ++next;
        } else if (!endsFreely(next)) {
            return false;
        }
        day = number.value;
        i = next;
        return true;
    }

    bool isPlausible(CivilDay day) const {
        return day.year >= firstYear && day.year <= lastYear && calendar_.startOfDay(day).has_value();
    }

    // The one closest to today, so that "5 Jan" in November is next year's and a date of last week stays in the past.
    std::optional<CivilDay> nearestDay(int month, int day) const {
        std::optional<CivilDay> best;
        Seconds closest = 0;
        for (int year = today_.year - 1; year <= today_.year + 1; ++year) {
            const auto start = calendar_.startOfDay({year, month, day});
            if (!start) continue;
            const Seconds distance = std::abs(*start - now_);
            if (best && distance >= closest) continue;
            best = CivilDay{year, month, day};
            closest = distance;
        }
        return best;
    }

    Match<DetectedDate> withTime(const Found<DayFound>& day) const {
        if (auto timed = withExplicitTime(day)) return timed;
        if (day.value.isWeak) return std::nullopt;
        std::size_t end = day.end;
        TimeFound time{day.value.hour.value_or(defaultHour), 0, false, false};
        const std::size_t word = is(end, "in") && is(end + 1, "the") ? end + 2 : skipping(end);
        if (const auto hour = date_words::hourOfPartOfDay(at(word))) {
            time.hour = *hour;
            end = word + 1;
            if (auto timed = withExplicitTime({day.value, end})) return timed;
        }
        return made(day.value, {time, 0}, end);
    }

    Match<DetectedDate> withExplicitTime(const Found<DayFound>& day) const {
        std::size_t next = skipping(day.end);
        if (is(next, "between")) ++next;
        const bool isAnnounced = next > day.end && !is(next - 1, ",") && !is(next - 1, "the") && !is(next - 1, "on");
        if (is(next, "t") && touches(next)) ++next;
        const auto span = spanAt(next, isAnnounced);
        if (!span) return std::nullopt;
        auto start = span->value;
        // "Tonight at 8" is in the evening.
        if (day.value.hour.value_or(0) > defaultHour && start.start.isOpen && start.start.hour < 12)
            start.start.hour += 12;
        return made(day.value, start, span->end);
    }

    Match<DetectedDate> made(DayFound day, const Span& span, std::size_t end) const {
        CivilTime reading{day.day, span.start.hour, span.start.minute, 0};
        Instant date = calendar_.instant(reading);
        if (day.isComingWeekday && day.day == today_ && date <= now_) {
            reading.day = addingDays(day.day, 7);
            date = calendar_.instant(reading);
        }
        return Found<DetectedDate>{{date, span.minutes * 60.0}, end};
    }

    // One time of day, or two with "to" or a dash between them. A number alone counts in `announced` places only.
    Match<Span> spanAt(std::size_t i, bool announced) const {
        auto start = timeAt(i);
        if (!start) return std::nullopt;
        static constexpr std::array<std::string_view, 8> between{"-", "–", "—", "to", "until", "till", "bis", "and"};
        if (isAny(start->end, between)) {
            if (const auto end = timeAt(start->end + 1)) {
                const bool hasOneFull = !start->value.isBare || !end->value.isBare || announced;
                if (hasOneFull && endsFreely(end->end))
                    return Found<Span>{spanning(start->value, end->value), end->end};
            }
        }
        if (!endsFreely(start->end) || (start->value.isBare && !(announced && endsPhrase(start->end))))
            return std::nullopt;
        return Found<Span>{{inTheAfternoon(start->value), 0}, start->end};
    }

    // "At 3" is a time of day, "at 3 shops" is not.
    bool endsPhrase(std::size_t i) const {
        if (at(i).kind != Token::Kind::word) return !at(i).isNumber();
        static constexpr std::array<std::string_view, 10> next{"for", "on", "with", "in",   "and",
                                                               "at",  "or", "to",   "then", "about"};
        return isAny(i, next) || dayAt(i).has_value();
    }

    static TimeFound inTheAfternoon(TimeFound time) {
        if (time.isOpen && time.hour >= 1 && time.hour <= latestAfternoonHour) time.hour += 12;
        return time;
    }

    static Span spanning(TimeFound start, TimeFound end) {
        // "3-4pm" begins in the afternoon, "11-1pm" does not.
        if (start.isOpen && !end.isOpen && end.hour >= 12 && start.hour < 12 &&
            start.hour + 12 < end.hour + (end.minute > 0 ? 1 : 0)) {
            start.hour += 12;
            start.isOpen = false;
        }
        start = inTheAfternoon(start);
        const int from = start.hour * 60 + start.minute;
        int to = end.hour * 60 + end.minute;
        if (to <= from && end.isOpen && end.hour < 12 && to + 12 * 60 > from) to += 12 * 60;
        if (to <= from) to += 24 * 60;
        return {start, to - from};
    }

    // "14:00", "2:30pm", "3 p.m.", "9.30 Uhr", "14h30", "half past 3", "noon", or a number alone.
    Match<TimeFound> timeAt(std::size_t i) const {
        if (is(i, "noon") || is(i, "midday")) return Found<TimeFound>{{12, 0, false, false}, i + 1};
        if (is(i, "half") && is(i + 1, "past")) return shiftedAt(i + 2, 30);
        if (is(i, "quarter") && is(i + 1, "past")) return shiftedAt(i + 2, 15);
        if (is(i, "quarter") && is(i + 1, "to")) return shiftedAt(i + 2, -15);
        const Token& number = at(i);
        const bool isRangeEnd = i > 0 && (is(i - 1, "-") || is(i - 1, "–") || is(i - 1, "—"));
        const bool followsT = i > 0 && is(i - 1, "t");
        if (!number.isNumber() || number.text.size() > 2 || !(startsFreely(i) || isRangeEnd || followsT))
            return std::nullopt;
        TimeFound time{number.value, 0, number.text[0] != '0' && number.value <= 12, true};
        std::size_t end = i + 1;
        const bool hasMinutes = touches(end) && touches(end + 1) && at(end + 1).isNumber() &&
                                at(end + 1).text.size() == 2 && at(end + 1).value <= 59;
        bool isDotted = false;
        if (hasMinutes && (is(end, ":") || is(end, ".") || is(end, "h"))) {
            isDotted = is(end, ".");
            time.minute = at(end + 1).value;
            time.isBare = false;
            end += 2;
            const bool hasSeconds = touches(end) && is(end, ":") && touches(end + 1) && at(end + 1).text.size() == 2;
            if (hasSeconds && at(end + 1).isNumber() && at(end + 1).value <= 59) end += 2;
        }
        if (takeMeridiem(end, time)) return Found<TimeFound>{time, end};
        if (is(end, "uhr") || is(end, "o")) {
            const bool isClock = is(end, "uhr") || (is(end + 2, "clock") && touches(end + 1) && touches(end + 2));
            if (isClock && time.hour <= 23) {
                time.isOpen = time.isOpen && !is(end, "uhr");
                time.isBare = false;
                return Found<TimeFound>{time, end + (is(end, "uhr") ? 1 : 3)};
            }
        }
        // With a point it may as well be a price or a version.
        if (isDotted || time.hour > 23 || (touches(end) && at(end).isWord() && !is(end, "z"))) return std::nullopt;
        return Found<TimeFound>{time, is(end, "z") && touches(end) ? end + 1 : end};
    }

    // "half past 3": the hour is a number alone.
    Match<TimeFound> shiftedAt(std::size_t i, int minutes) const {
        const Token& number = at(i);
        if (!number.isNumber() || number.value < 1 || number.value > 12 || number.text.size() > 2) return std::nullopt;
        TimeFound time{number.value, 0, true, false};
        std::size_t end = i + 1;
        takeMeridiem(end, time);
        if (!endsFreely(end)) return std::nullopt;
        const int total = (time.hour * 60 + minutes + 24 * 60) % (24 * 60);
        time.hour = total / 60;
        time.minute = total % 60;
        // Without am or pm, a quarter to one is after noon.
        if (time.isOpen && time.hour == 0) time.hour = 12;
        return Found<TimeFound>{time, end};
    }

    bool takeMeridiem(std::size_t& i, TimeFound& time) const {
        bool isAfternoon = is(i, "pm");
        std::size_t end = i + 1;
        if (!isAfternoon && !is(i, "am")) {
            // "3 p.m."
            isAfternoon = is(i, "p");
            if ((!isAfternoon && !is(i, "a")) || !is(i + 1, ".") || !is(i + 2, "m") || !touches(i + 1) ||
                !touches(i + 2))
                return false;
            end = i + 3;
            if (is(end, ".") && touches(end)) ++end;
        }
        // "I am 3 am" aside, "am" behind a space is the time of day only behind an hour that can be one.
        if (time.hour < 1 || time.hour > 12) return false;
        time.hour = time.hour % 12 + (isAfternoon ? 12 : 0);
        time.isOpen = time.isBare = false;
        i = end;
        return true;
    }

    // "for 45 minutes" or "(45 min)" behind the date, or "for 2 hours" in front of it.
    Seconds durationAround(std::size_t begin, std::size_t end) const {
        std::size_t next = is(end, ",") ? end + 1 : end;
        const bool isMarked = is(next, "for") || is(next, "(");
        if (isMarked) {
            if (const auto length = lengthAt(next + 1)) return length->value.seconds + length->value.days * 86400.0;
        }
        for (std::size_t back = 1; back <= 5 && back <= begin; ++back) {
            if (!is(begin - back, "for")) continue;
            const auto length = lengthAt(begin - back + 1);
            if (length && skipping(length->end) >= begin) return length->value.seconds + length->value.days * 86400.0;
        }
        return 0;
    }

    std::vector<Token> tokens_;
    const date_words::Vocabulary& words_;
    const LocalCalendar& calendar_;
    Instant now_;
    CivilDay today_;
};

}  // namespace

struct DateDetector::Vocabulary : date_words::Vocabulary {
    using date_words::Vocabulary::Vocabulary;
};

DateDetector::DateDetector(const Clock& clock) : clock_(&clock) {}
DateDetector::~DateDetector() = default;
DateDetector::DateDetector(DateDetector&&) noexcept = default;
DateDetector& DateDetector::operator=(DateDetector&&) noexcept = default;

std::optional<DetectedDate> DateDetector::firstDate(std::string_view text) {
    if (text.size() > maximumText) {
        std::size_t end = maximumText;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
            --end;
        text = text.substr(0, end);
    }
    const std::string locale = clock_->locale();
    if (!vocabulary_ || vocabulary_->locale() != locale) vocabulary_ = std::make_unique<Vocabulary>(locale);
    const LocalCalendar calendar(*clock_);
    return Reader(date_words::tokens(text), *vocabulary_, calendar, clock_->now()).first();
}

}  // namespace sunpane
