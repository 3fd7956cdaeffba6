#include "linux/calendar/IcsWriting.h"

#include <libical/ical.h>

#include <cmath>
#include <cstdlib>
#include <memory>

#include "base/Text.h"

namespace sunpane {
namespace {

icaltimetype toUtc(Instant instant) {
    return icaltime_from_timet_with_zone(static_cast<time_t>(std::floor(instant.unixTime())), 0,
                                         icaltimezone_get_utc_timezone());
}

}  // namespace

std::string writeIcs(const CalendarStore::NewEvent& event, const std::string& uid, Instant now) {
    struct Deleter {
        void operator()(icalcomponent* component) const { icalcomponent_free(component); }
    };
    const std::unique_ptr<icalcomponent, Deleter> calendar(icalcomponent_new(ICAL_VCALENDAR_COMPONENT));
    icalcomponent_add_property(calendar.get(), icalproperty_new_version("2.0"));
    icalcomponent_add_property(calendar.get(), icalproperty_new_prodid("-//Dawnly//Dawnly//EN"));
    icalcomponent* written = icalcomponent_new(ICAL_VEVENT_COMPONENT);
    icalcomponent_add_component(calendar.get(), written);
    icalcomponent_add_property(written, icalproperty_new_uid(uid.c_str()));
    icalcomponent_add_property(written, icalproperty_new_dtstamp(toUtc(now)));
    icalcomponent_add_property(written, icalproperty_new_dtstart(toUtc(event.start)));
    icalcomponent_add_property(written, icalproperty_new_dtend(toUtc(event.end)));
    const std::string title = text::toValidUtf8(event.title);
    icalcomponent_add_property(written, icalproperty_new_summary(title.c_str()));
    const std::unique_ptr<char, decltype(&std::free)> text(icalcomponent_as_ical_string_r(calendar.get()), &std::free);
    return text.get();
}

}  // namespace sunpane
