#include "linux/calendar/IcsExpansion.h"

#include <libical/ical.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

namespace sunpane {
namespace {

constexpr int maximumSteps = 100000;
constexpr std::int64_t secondsPerDay = 86400;
// Longer events that repeat are looked for from this long before the span.
constexpr Seconds maximumLookBack = 366.0 * secondsPerDay;

struct IteratorDeleter {
    void operator()(icalrecur_iterator* iterator) const { icalrecur_iterator_free(iterator); }
};

icaltimetype toIcal(std::int64_t clockSeconds, bool isDay) {
    using namespace std::chrono;
    const auto dayNumber = floor<days>(seconds(clockSeconds));
    const year_month_day date{sys_days(dayNumber)};
    const auto ofDay = clockSeconds - dayNumber.count() * secondsPerDay;
    icaltimetype time = icaltime_null_time();
    time.year = static_cast<int>(date.year());
    time.month = static_cast<int>(static_cast<unsigned>(date.month()));
    time.day = static_cast<int>(static_cast<unsigned>(date.day()));
    time.hour = static_cast<int>(ofDay / 3600);
    time.minute = static_cast<int>(ofDay / 60 % 60);
    time.second = static_cast<int>(ofDay % 60);
    time.is_date = isDay ? 1 : 0;
    return time;
}

std::int64_t fromIcal(const icaltimetype& time) {
    using namespace std::chrono;
    const auto days = sys_days(year(time.year) / time.month / time.day).time_since_epoch().count();
    return days * secondsPerDay + time.hour * 3600LL + time.minute * 60LL + time.second;
}

std::string dayName(std::int64_t clockSeconds) {
    const icaltimetype time = toIcal(clockSeconds, true);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%04d%02d%02d", time.year, time.month, time.day);
    return text.data();
}

// The way in which RFC 5545 names an occurrence, in UTC unless it goes by the user's clock, so that it stays the same
// whichever zone the file writes it in and wherever the user travels.
std::string recurrenceName(const IcsTime& time) {
    if (time.isDay) return dayName(time.clockSeconds);
    const std::int64_t clock =
        time.zone ? static_cast<std::int64_t>(time.instant(*time.zone).unixTime()) : time.clockSeconds;
    const icaltimetype parts = toIcal(clock, false);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "T%02d%02d%02d%s", parts.hour, parts.minute, parts.second,
                  time.zone ? "Z" : "");
    return dayName(clock) + text.data();
}

/// How long an event lasts from any start.
class Length {
public:
    Length(const IcsEvent& event, const IcsZone& userZone) : userZone_(&userZone) {
        isDay_ = event.start.isDay;
        if (event.end && isDay_) {
            clockSeconds_ = event.end->clockSeconds - event.start.clockSeconds;
        } else if (event.end) {
            seconds_ = event.end->instant(userZone) - event.start.instant(userZone);
        } else {
            clockSeconds_ = event.durationDays * secondsPerDay;
            (isDay_ ? clockSeconds_ : wholeSeconds_) += event.durationSeconds;
            seconds_ = static_cast<Seconds>(wholeSeconds_);
        }
        // A day without an end is all of that day.
        if (isDay_) clockSeconds_ = std::max(clockSeconds_, secondsPerDay);
    }

    TimeSpan from(const IcsTime& start) const {
        const Instant begin = start.instant(*userZone_);
        Instant end = begin;
        if (clockSeconds_ != 0) {
            end = IcsTime{start.clockSeconds + clockSeconds_, start.isDay, start.zone}.instant(*userZone_);
        }
        return {begin, std::max(begin, end + seconds_)};
    }

    Seconds longest() const { return static_cast<Seconds>(clockSeconds_) + seconds_ + secondsPerDay; }

private:
    const IcsZone* userZone_;
    bool isDay_ = false;
    // Days by the clock, which may be longer or shorter than 24 hours, and then real seconds.
    std::int64_t clockSeconds_ = 0;
    std::int64_t wholeSeconds_ = 0;
    Seconds seconds_ = 0;
};

bool hasConditions(const icalrecurrencetype& rule) {
    const auto isSet = [](const short* values) { return values[0] != ICAL_RECURRENCE_ARRAY_MAX; };
    return isSet(rule.by_second) || isSet(rule.by_minute) || isSet(rule.by_hour) || isSet(rule.by_day) ||
           isSet(rule.by_month_day) || isSet(rule.by_year_day) || isSet(rule.by_week_no) || isSet(rule.by_month) ||
           isSet(rule.by_set_pos);
}

/// What stands for occurrences of one repeating event.
struct Replacements {
    /// The names of those occurrences. Some programs name a timed one by its day alone.
    std::set<std::string> names;
    /// Events that stand for all later ones too.
    std::vector<const IcsEvent*> lasting;
};

/// From one of its occurrences on, a repeating event takes place as this event does: as long, and as much earlier or
/// later as that occurrence was moved.
class Change {
public:
    Change(const IcsEvent& event, const IcsTime& seriesStart, const IcsZone& userZone)
        : event_(&event), length_(event, userZone), userZone_(&userZone) {
        IcsTime replaced = *event.replaces;
        if (replaced.isDay && !seriesStart.isDay) {
            const std::int64_t ofDay = seriesStart.clockSeconds - startOfDay(seriesStart.clockSeconds);
            replaced = {replaced.clockSeconds + ofDay, false, seriesStart.zone};
        }
        from_ = replaced.instant(userZone);
        shift_ = event.start.clockSeconds - event.start.clockSecondsAt(from_, userZone);
    }

    const IcsEvent& event() const { return *event_; }
    const Length& length() const { return length_; }
    Instant from() const { return from_; }
    /// How much later (s) its clock shows an occurrence than before.
    std::int64_t shift() const { return shift_; }

    /// When an occurrence that was due at `instant` takes place.
    IcsTime moved(Instant instant) const {
        const IcsTime& like = event_->start;
        const std::int64_t clock = like.clockSecondsAt(instant, *userZone_) + shift_;
        // The clock may skip midnight.
        return {like.isDay ? startOfDay(clock + secondsPerDay / 2) : clock, like.isDay, like.zone};
    }

private:
    static std::int64_t startOfDay(std::int64_t clockSeconds) {
        return std::chrono::floor<std::chrono::days>(std::chrono::seconds(clockSeconds)).count() * secondsPerDay;
    }

    const IcsEvent* event_;
    Length length_;
    const IcsZone* userZone_;
    Instant from_;
    std::int64_t shift_ = 0;
};

/// Works out the occurrences of one repeating event.
class Series {
public:
    /// `replacements` outlive the series.
    Series(const IcsEvent& event, TimeSpan span, const IcsZone& userZone, const Replacements& replacements,
           const StopFlag& stopped)
        : event_(event),
          span_(span),
          userZone_(userZone),
          stopped_(stopped),
          length_(event, userZone),
          replaced_(replacements.names) {
        for (const auto& time : event.recurrence->excluded)
            excluded_.insert(recurrenceName(time));
        for (const IcsEvent* lasting : replacements.lasting)
            changes_.emplace_back(*lasting, event.start, userZone);
        std::stable_sort(changes_.begin(), changes_.end(),
                         [](const Change& a, const Change& b) { return a.from() < b.from(); });
        Seconds reach = length_.longest();
        Seconds earlier = 0;
        for (const auto& change : changes_) {
            const auto shift = static_cast<Seconds>(change.shift());
            reach = std::max(reach, change.length().longest() + shift);
            earlier = std::max(earlier, -shift);
        }
        const Seconds lookBack = std::clamp(reach, 0.0, maximumLookBack);
        const Seconds lookAhead = std::min(earlier, maximumLookBack);
        // A day on either side covers every difference between clocks.
        firstClock_ = event.start.clockSecondsAt(span.from - lookBack, userZone) - secondsPerDay;
        lastClock_ = event.start.clockSecondsAt(span.to + lookAhead, userZone) + secondsPerDay;
    }

    std::vector<IcsOccurrence> occurrences() && {
        add(event_.start, std::nullopt);
        for (const auto& extra : event_.recurrence->extras)
            add(extra.start, extra.duration);
        for (const auto& rule : event_.recurrence->rules)
            addRule(rule);
        return std::move(result_);
    }

private:
    void add(const IcsTime& start, std::optional<Seconds> duration) {
        if (result_.size() >= maximumOccurrencesPerEvent) return;
        const Change* change = changeAt(start);
        const IcsEvent& event = change != nullptr ? change->event() : event_;
        if (event.cancelled) return;
        TimeSpan time =
            change != nullptr ? change->length().from(change->moved(start.instant(userZone_))) : length_.from(start);
        if (duration) time.to = time.from + *duration;
        if (!overlaps(time, span_)) return;
        std::string name = recurrenceName(start);
        // Some programs leave out or replace a timed occurrence by its day.
        const std::string day = dayName(start.clockSeconds);
        for (const std::set<std::string>& others : {std::cref(excluded_), std::cref(replaced_)}) {
            if (others.contains(name) || others.contains(day)) return;
        }
        if (!taken_.insert(name).second) return;
        result_.push_back({time, &event, std::move(name)});
    }

    // The last change from which on `start` is different; null when it is as it always was.
    const Change* changeAt(const IcsTime& start) const {
        if (changes_.empty()) return nullptr;
        const auto next =
            std::upper_bound(changes_.begin(), changes_.end(), start.instant(userZone_),
                             [](Instant instant, const Change& change) { return instant < change.from(); });
        return next == changes_.begin() ? nullptr : &*std::prev(next);
    }

    // The end of the rule or of the span, whichever is first; without it a rule that never comes true would be
    // followed through the centuries.
    icaltimetype until(const icaltimetype& ruleUntil) const {
        std::int64_t last = lastClock_;
        if (icaltime_is_null_time(ruleUntil) == 0) {
            std::int64_t clock = fromIcal(ruleUntil);
            if (icaltime_is_utc(ruleUntil) != 0) {
                clock = event_.start.clockSecondsAt(Instant::fromUnix(static_cast<double>(clock)), userZone_);
            } else if (ruleUntil.is_date != 0) {
                clock += secondsPerDay - 1;
            }
            last = std::min(last, clock);
        }
        return toIcal(last, false);
    }

    void addRule(const std::string& text) {
        icalrecurrencetype rule = icalrecurrencetype_from_string(text.c_str());
        const bool isFine = rule.freq == ICAL_SECONDLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE;
        if (rule.freq == ICAL_NO_RECURRENCE || (isFine && hasConditions(rule))) return;
        rule.until = until(rule.until);
        const std::unique_ptr<icalrecur_iterator, IteratorDeleter> iterator(
            icalrecur_iterator_new(rule, toIcal(event_.start.clockSeconds, event_.start.isDay)));
        if (!iterator) return;
        // A rule with a count has to be followed from its beginning.
        if (rule.count == 0 && firstClock_ > event_.start.clockSeconds) {
            icalrecur_iterator_set_start(iterator.get(), toIcal(firstClock_, false));
        }
        for (int step = 0; step < maximumSteps && !stopped_; ++step) {
            const icaltimetype next = icalrecur_iterator_next(iterator.get());
            if (icaltime_is_null_time(next) != 0) return;
            const std::int64_t clock = fromIcal(next);
            if (clock > lastClock_ || result_.size() >= maximumOccurrencesPerEvent) return;
            if (clock >= firstClock_) add({clock, event_.start.isDay, event_.start.zone}, std::nullopt);
        }
    }

    const IcsEvent& event_;
    TimeSpan span_;
    const IcsZone& userZone_;
    const StopFlag& stopped_;
    Length length_;
    const std::set<std::string>& replaced_;
    std::set<std::string> excluded_;
    // By the moment from which they count.
    std::vector<Change> changes_;
    std::set<std::string> taken_;
    std::vector<IcsOccurrence> result_;
    std::int64_t firstClock_ = 0;
    std::int64_t lastClock_ = 0;
};

}  // namespace

std::vector<IcsOccurrence> expand(const IcsContent& content, TimeSpan span, const IcsZone& userZone,
                                  const StopFlag& stopped) {
    std::map<std::string_view, Replacements> replacements;
    for (const auto& event : content.events) {
        if (!event.replaces) continue;
        Replacements& own = replacements[event.uid];
        own.names.insert(recurrenceName(*event.replaces));
        if (event.replacesLater) own.lasting.push_back(&event);
    }
    const Replacements none;
    std::vector<IcsOccurrence> result;
    for (const auto& event : content.events) {
        if (stopped || result.size() >= maximumOccurrencesPerFile) break;
        if (event.cancelled) continue;
        if (event.recurrence && !event.replaces) {
            const auto own = replacements.find(event.uid);
            auto found =
                Series(event, span, userZone, own == replacements.end() ? none : own->second, stopped).occurrences();
            std::move(found.begin(), found.end(), std::back_inserter(result));
            continue;
        }
        const TimeSpan time = Length(event, userZone).from(event.start);
        if (!overlaps(time, span)) continue;
        result.push_back({time, &event, event.replaces ? recurrenceName(*event.replaces) : std::string()});
    }
    return result;
}

}  // namespace sunpane
