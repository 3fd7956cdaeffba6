#include "linux/calendar/IcsReading.h"

#include <libical/ical.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "base/Text.h"
#include "linux/calendar/IcsBlocks.h"

namespace sunpane {
namespace {

struct ComponentDeleter {
    void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using Component = std::unique_ptr<icalcomponent, ComponentDeleter>;

/// The zones that one file may name: those that everyone knows, then its own.
class FileZones {
public:
    FileZones(const std::map<std::string, std::string>& definitions, IcsZones& zones)
        : definitions_(definitions), zones_(zones) {}

    // What everyone knows comes first: it is kept up to date, and a copy in the file need not be read.
    IcsZonePointer find(const std::string& name) {
        if (auto zone = zones_.named(name)) return zone;
        const auto definition = definitions_.find(name);
        return definition == definitions_.end() ? nullptr : zones_.defined(definition->second);
    }

private:
    const std::map<std::string, std::string>& definitions_;
    IcsZones& zones_;
};

std::int64_t toClockSeconds(const icaltimetype& time) {
    using namespace std::chrono;
    const sys_days month(year(time.year) / std::clamp(time.month, 1, 12) / 1);
    const auto days = month.time_since_epoch().count() + time.day - 1;
    const std::int64_t seconds = time.is_date != 0 ? 0 : (time.hour * 60LL + time.minute) * 60 + time.second;
    return static_cast<std::int64_t>(days) * 86400 + seconds;
}

std::optional<IcsTime> toTime(const icaltimetype& time, const char* zoneName, FileZones& zones) {
    if (icaltime_is_null_time(time) != 0 || time.year < 1 || time.year > 9999) return std::nullopt;
    IcsTime result{toClockSeconds(time), time.is_date != 0, nullptr};
    if (result.isDay) return result;
    if (icaltime_is_utc(time) != 0) {
        result.zone = IcsZones::utc();
    } else if (zoneName != nullptr) {
        result.zone = zones.find(zoneName);
    }
    return result;
}

const char* zoneParameter(icalproperty* property) {
    icalparameter* parameter = icalproperty_get_first_parameter(property, ICAL_TZID_PARAMETER);
    return parameter != nullptr ? icalparameter_get_tzid(parameter) : nullptr;
}

bool reachesOn(icalproperty* property) {
    icalparameter* parameter = icalproperty_get_first_parameter(property, ICAL_RANGE_PARAMETER);
    return parameter != nullptr && icalparameter_get_range(parameter) == ICAL_RANGE_THISANDFUTURE;
}

// The property's own getters trust it to hold a value of the usual kind, which a file may override.
std::optional<IcsTime> timeOf(icalproperty* property, FileZones& zones) {
    const icalvalue* value = icalproperty_get_value(property);
    if (value == nullptr) return std::nullopt;
    switch (icalvalue_isa(value)) {
        case ICAL_DATE_VALUE:
            return toTime(icalvalue_get_date(value), nullptr, zones);
        case ICAL_DATETIME_VALUE:
        case ICAL_DATETIMEDATE_VALUE:
            return toTime(icalvalue_get_datetime(value), zoneParameter(property), zones);
        default:
            return std::nullopt;
    }
}

std::optional<std::string> textOf(icalproperty* property) {
    const icalvalue* value = icalproperty_get_value(property);
    if (value == nullptr) return std::nullopt;
    const char* text = nullptr;
    switch (icalvalue_isa(value)) {
        case ICAL_TEXT_VALUE:
            text = icalvalue_get_text(value);
            break;
        case ICAL_URI_VALUE:
            text = icalvalue_get_uri(value);
            break;
        case ICAL_X_VALUE:
            text = icalvalue_get_x(value);
            break;
        default:
            break;
    }
    if (text == nullptr || *text == '\0') return std::nullopt;
    return text::toValidUtf8(text);
}

std::optional<IcsRecurrence::Extra> extraOf(icalproperty* property, FileZones& zones) {
    const icalvalue* value = icalproperty_get_value(property);
    if (value == nullptr) return std::nullopt;
    const auto kind = icalvalue_isa(value);
    if (kind != ICAL_DATETIMEPERIOD_VALUE && kind != ICAL_PERIOD_VALUE) {
        auto start = timeOf(property, zones);
        if (!start) return std::nullopt;
        return IcsRecurrence::Extra{std::move(*start), std::nullopt};
    }
    const icaldatetimeperiodtype both = kind == ICAL_PERIOD_VALUE
                                            ? icaldatetimeperiodtype{icaltime_null_time(), icalvalue_get_period(value)}
                                            : icalvalue_get_datetimeperiod(value);
    if (icaltime_is_null_time(both.time) == 0) {
        auto start = toTime(both.time, zoneParameter(property), zones);
        if (!start) return std::nullopt;
        return IcsRecurrence::Extra{std::move(*start), std::nullopt};
    }
    auto start = toTime(both.period.start, zoneParameter(property), zones);
    if (!start) return std::nullopt;
    const auto end = toTime(both.period.end, zoneParameter(property), zones);
    const Seconds duration = end ? static_cast<Seconds>(end->clockSeconds - start->clockSeconds)
                                 : static_cast<Seconds>(icaldurationtype_as_int(both.period.duration));
    return IcsRecurrence::Extra{std::move(*start), std::max(duration, 0.0)};
}

std::optional<std::string> ruleOf(icalproperty* property) {
    const icalvalue* value = icalproperty_get_value(property);
    if (value == nullptr || icalvalue_isa(value) != ICAL_RECUR_VALUE) return std::nullopt;
    icalrecurrencetype rule = icalvalue_get_recur(value);
    const std::unique_ptr<char, decltype(&std::free)> text(icalrecurrencetype_as_string_r(&rule), &std::free);
    if (!text) return std::nullopt;
    return std::string(text.get());
}

void readDuration(icalproperty* property, IcsEvent& event) {
    const icalvalue* value = icalproperty_get_value(property);
    if (value == nullptr || icalvalue_isa(value) != ICAL_DURATION_VALUE) return;
    const icaldurationtype duration = icalvalue_get_duration(value);
    constexpr unsigned longestDays = 36525;
    if (duration.is_neg != 0 || duration.days > longestDays || duration.weeks > longestDays / 7) return;
    event.durationDays = static_cast<int>(duration.days + 7 * duration.weeks);
    event.durationSeconds = (std::int64_t{duration.hours} * 60 + duration.minutes) * 60 + duration.seconds;
}

/// What the properties of an event say that is put together only after the last of them.
struct Gathered {
    IcsRecurrence recurrence;
    std::vector<std::string> conferences;
};

/// Takes over what one property says; true when it gave the start.
bool readProperty(icalproperty* property, FileZones& zones, IcsEvent& event, Gathered& gathered) {
    IcsRecurrence& recurrence = gathered.recurrence;
    switch (icalproperty_isa(property)) {
        case ICAL_UID_PROPERTY:
            event.uid = textOf(property).value_or("");
            break;
        case ICAL_SUMMARY_PROPERTY:
            event.title = textOf(property);
            break;
        case ICAL_LOCATION_PROPERTY:
            event.location = textOf(property);
            break;
        case ICAL_DESCRIPTION_PROPERTY:
            event.notes = textOf(property);
            break;
        case ICAL_URL_PROPERTY:
            event.url = textOf(property);
            break;
        case ICAL_CONFERENCE_PROPERTY:
        case ICAL_X_PROPERTY:
            if (gathered.conferences.size() >= maximumConferencesPerEvent) break;
            if (auto address = textOf(property)) gathered.conferences.push_back(std::move(*address));
            break;
        case ICAL_STATUS_PROPERTY:
            if (const icalvalue* value = icalproperty_get_value(property); value != nullptr) {
                event.cancelled =
                    icalvalue_isa(value) == ICAL_STATUS_VALUE && icalvalue_get_status(value) == ICAL_STATUS_CANCELLED;
            }
            break;
        case ICAL_SEQUENCE_PROPERTY:
            if (const icalvalue* value = icalproperty_get_value(property); value != nullptr) {
                if (icalvalue_isa(value) == ICAL_INTEGER_VALUE) event.sequence = icalvalue_get_integer(value);
            }
            break;
        case ICAL_DTSTART_PROPERTY:
            if (auto start = timeOf(property, zones)) {
                event.start = std::move(*start);
                return true;
            }
            break;
        case ICAL_DTEND_PROPERTY:
            event.end = timeOf(property, zones);
            break;
        case ICAL_DURATION_PROPERTY:
            readDuration(property, event);
            break;
        case ICAL_RECURRENCEID_PROPERTY:
            event.replaces = timeOf(property, zones);
            event.replacesLater = reachesOn(property);
            break;
        case ICAL_RRULE_PROPERTY:
            if (auto rule = ruleOf(property)) recurrence.rules.push_back(std::move(*rule));
            break;
        case ICAL_RDATE_PROPERTY:
            if (recurrence.extras.size() >= maximumDatesPerEvent) break;
            if (auto extra = extraOf(property, zones)) recurrence.extras.push_back(std::move(*extra));
            break;
        case ICAL_EXDATE_PROPERTY:
            if (recurrence.excluded.size() >= maximumDatesPerEvent) break;
            if (auto time = timeOf(property, zones)) recurrence.excluded.push_back(std::move(*time));
            break;
        default:
            break;
    }
    return false;
}

std::optional<IcsEvent> readEvent(const IcsBlocks::Event& block, FileZones& zones) {
    const Component component(icalparser_parse_string(block.lines.c_str()));
    if (!component || icalcomponent_isa(component.get()) != ICAL_VEVENT_COMPONENT) return std::nullopt;
    IcsEvent event;
    Gathered gathered;
    bool hasStart = false;
    for (icalproperty* property = icalcomponent_get_first_property(component.get(), ICAL_ANY_PROPERTY);
         property != nullptr; property = icalcomponent_get_next_property(component.get(), ICAL_ANY_PROPERTY)) {
        hasStart = readProperty(property, zones, event, gathered) || hasStart;
    }
    if (!hasStart) return std::nullopt;
    event.hasAttendees = block.hasAttendees;
    if (event.end && event.end->isDay != event.start.isDay) event.end.reset();
    // A telephone number or the page of the event may come before the address of the meeting.
    for (const auto& conference : gathered.conferences)
        event.url = event.url ? *event.url + "\n" + conference : conference;
    IcsRecurrence& recurrence = gathered.recurrence;
    if (!recurrence.rules.empty() || !recurrence.extras.empty()) {
        event.recurrence = std::make_unique<const IcsRecurrence>(std::move(recurrence));
    }
    return event;
}

// Later revisions of an event replace earlier ones; without a uid nothing tells two events to be the same.
void keepNewest(std::vector<IcsEvent>& events) {
    using Identity = std::pair<std::string_view, std::optional<std::int64_t>>;
    std::map<Identity, std::size_t> newest;
    std::vector<bool> keep(events.size(), true);
    for (std::size_t i = 0; i < events.size(); ++i) {
        const IcsEvent& event = events[i];
        if (event.uid.empty()) continue;
        const auto replaces = event.replaces ? std::optional(event.replaces->clockSeconds) : std::nullopt;
        const auto [entry, isNew] = newest.try_emplace({event.uid, replaces}, i);
        if (isNew) continue;
        const bool newer = event.sequence >= events[entry->second].sequence;
        keep[newer ? entry->second : i] = false;
        if (newer) entry->second = i;
    }
    std::size_t index = 0;
    std::erase_if(events, [&](const IcsEvent&) { return !keep[index++]; });
}

}  // namespace

IcsContent readIcs(std::string_view text, IcsZones& zones, const StopFlag& stopped) {
    icalerror_set_errors_are_fatal(0);
    const IcsBlocks blocks = splitIcs(text, stopped);
    FileZones fileZones(blocks.zones, zones);
    IcsContent content;
    content.calendarName = blocks.calendarName;
    content.events.reserve(blocks.events.size());
    for (const auto& block : blocks.events) {
        if (stopped) break;
        if (auto event = readEvent(block, fileZones)) content.events.push_back(std::move(*event));
    }
    keepNewest(content.events);
    content.events.shrink_to_fit();
    return content;
}

}  // namespace sunpane
