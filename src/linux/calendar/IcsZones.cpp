#include "linux/calendar/IcsZones.h"

#include <libical/ical.h>
#include <unicode/timezone.h>

#include <cmath>
#include <memory>
#include <utility>

#include "base/TimeZones.h"

namespace sunpane {
namespace {

constexpr std::int64_t secondsPerDay = 86400;

/// A zone of the time zone database.
class NamedZone : public IcsZone {
public:
    explicit NamedZone(std::unique_ptr<icu::TimeZone> zone) : zone_(std::move(zone)) {}

    int offsetAt(std::int64_t unixSeconds) const override {
        std::int32_t standard = 0;
        std::int32_t daylight = 0;
        UErrorCode status = U_ZERO_ERROR;
        zone_->getOffset(static_cast<double>(unixSeconds) * 1000, 0, standard, daylight, status);
        return U_SUCCESS(status) ? (standard + daylight) / 1000 : 0;
    }

private:
    std::unique_ptr<icu::TimeZone> zone_;
};

/// A zone that a file defines.
class DefinedZone : public IcsZone {
public:
    struct Deleter {
        void operator()(icaltimezone* zone) const { icaltimezone_free(zone, 1); }
    };
    explicit DefinedZone(std::unique_ptr<icaltimezone, Deleter> zone) : zone_(std::move(zone)) {}

    int offsetAt(std::int64_t unixSeconds) const override {
        icaltimetype time = icaltime_from_timet_with_zone(unixSeconds, 0, icaltimezone_get_utc_timezone());
        int isDaylight = 0;
        return icaltimezone_get_utc_offset_of_utc_time(zone_.get(), &time, &isDaylight);
    }

private:
    std::unique_ptr<icaltimezone, Deleter> zone_;
};

IcsZonePointer byExactName(const icu::UnicodeString& name) {
    icu::UnicodeString canonical;
    UErrorCode status = U_ZERO_ERROR;
    icu::TimeZone::getCanonicalID(name, canonical, status);
    if (U_FAILURE(status) || canonical == UNICODE_STRING_SIMPLE("Etc/Unknown")) return nullptr;
    return std::make_shared<const NamedZone>(std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(name)));
}

IcsZonePointer find(const std::string& name) {
    constexpr std::size_t longestName = 256;
    if (name.empty() || name.size() > longestName) return nullptr;
    const auto whole = icu::UnicodeString::fromUTF8(name);
    if (auto zone = byExactName(whole)) return zone;
    for (auto slash = name.find('/'); slash != std::string::npos; slash = name.find('/', slash + 1)) {
        if (auto zone = byExactName(icu::UnicodeString::fromUTF8(name.substr(slash + 1)))) return zone;
    }
    // Looking through the names from Windows takes long; all that people live by end like this.
    if (!name.ends_with(" Time")) return nullptr;
    icu::UnicodeString fromWindows;
    UErrorCode status = U_ZERO_ERROR;
    icu::TimeZone::getIDForWindowsID(whole, nullptr, fromWindows, status);
    return U_SUCCESS(status) && !fromWindows.isEmpty() ? byExactName(fromWindows) : nullptr;
}

// The library works out every change of the clocks up to some year; clocks that change each second would fill the
// memory.
bool changesRarely(icalcomponent* observance) {
    for (icalproperty* property = icalcomponent_get_first_property(observance, ICAL_RRULE_PROPERTY);
         property != nullptr; property = icalcomponent_get_next_property(observance, ICAL_RRULE_PROPERTY)) {
        const icalvalue* value = icalproperty_get_value(property);
        if (value == nullptr || icalvalue_isa(value) != ICAL_RECUR_VALUE) return false;
        const icalrecurrencetype rule = icalvalue_get_recur(value);
        const auto isSet = [](const short* values) { return values[0] != ICAL_RECURRENCE_ARRAY_MAX; };
        if (rule.freq != ICAL_YEARLY_RECURRENCE || isSet(rule.by_hour) || isSet(rule.by_minute) ||
            isSet(rule.by_second)) {
            return false;
        }
    }
    return true;
}

bool hasPlausibleObservances(icalcomponent* zone) {
    bool hasAny = false;
    for (icalcomponent* each = icalcomponent_get_first_component(zone, ICAL_ANY_COMPONENT); each != nullptr;
         each = icalcomponent_get_next_component(zone, ICAL_ANY_COMPONENT)) {
        const auto kind = icalcomponent_isa(each);
        if (kind != ICAL_XSTANDARD_COMPONENT && kind != ICAL_XDAYLIGHT_COMPONENT) continue;
        if (!changesRarely(each)) return false;
        hasAny = hasAny || (icalcomponent_get_first_property(each, ICAL_DTSTART_PROPERTY) != nullptr &&
                            icalcomponent_get_first_property(each, ICAL_TZOFFSETTO_PROPERTY) != nullptr);
    }
    return hasAny;
}

IcsZonePointer parse(const std::string& lines) {
    icalcomponent* component = icalparser_parse_string(lines.c_str());
    if (component == nullptr) return nullptr;
    std::unique_ptr<icaltimezone, DefinedZone::Deleter> zone(icaltimezone_new());
    const bool isZone = icalcomponent_isa(component) == ICAL_VTIMEZONE_COMPONENT && hasPlausibleObservances(component);
    // Taken over by the zone only when that succeeds.
    if (!isZone || icaltimezone_set_component(zone.get(), component) == 0) {
        icalcomponent_free(component);
        return nullptr;
    }
    return std::make_shared<const DefinedZone>(std::move(zone));
}

}  // namespace

Instant IcsTime::instant(const IcsZone& userZone) const {
    const IcsZone& clock = zone ? *zone : userZone;
    // No clock changes twice in two days, so it shows either of these offsets.
    const int before = clock.offsetAt(clockSeconds - secondsPerDay);
    const int after = clock.offsetAt(clockSeconds + secondsPerDay);
    const auto isShown = [&](int offset) { return clock.offsetAt(clockSeconds - offset) == offset; };
    const int offset = before == after || isShown(before) || !isShown(after) ? before : after;
    return Instant::fromUnix(static_cast<double>(clockSeconds - offset));
}

std::int64_t IcsTime::clockSecondsAt(Instant instant, const IcsZone& userZone) const {
    const auto seconds = static_cast<std::int64_t>(std::floor(instant.unixTime()));
    return seconds + (zone ? *zone : userZone).offsetAt(seconds);
}

IcsZonePointer IcsZones::remember(Zones& zones, const std::string& key, IcsZonePointer zone) {
    if (zones.size() >= maximumRemembered) zones.clear();
    return zones.insert_or_assign(key, std::move(zone)).first->second;
}

IcsZonePointer IcsZones::named(const std::string& name) {
    const auto found = named_.find(name);
    return found != named_.end() ? found->second : remember(named_, name, find(name));
}

IcsZonePointer IcsZones::defined(const std::string& lines) {
    if (const auto found = defined_.find(lines); found != defined_.end()) return found->second;
    return remember(defined_, lines, parse(lines));
}

IcsZonePointer IcsZones::userZone(const std::string& name) {
    if (auto zone = makeTimeZone(name)) return std::make_shared<const NamedZone>(std::move(zone));
    return utc();
}

IcsZonePointer IcsZones::utc() {
    static const IcsZonePointer zone =
        std::make_shared<const NamedZone>(std::unique_ptr<icu::TimeZone>(icu::TimeZone::getGMT()->clone()));
    return zone;
}

}  // namespace sunpane
