#include "linux/calendar/eds/EdsConnection.h"

#include <set>
#include <string_view>
#include <utility>

namespace sunpane {
namespace {

// The backend that makes a calendar from the birthdays in the address books.
constexpr std::string_view birthdayBackend = "contacts";
constexpr const char* everything = "#t";
constexpr auto withoutWaitingForNetwork = static_cast<guint32>(-1);
constexpr std::size_t maximumZonesPerCalendar = 1000;

std::string identifierOf(ESource* source) {
    return std::string(CalendarService::identifierPrefix) + e_source_get_uid(source);
}

CalendarInfo infoOf(ESource* source) {
    auto* extension = E_SOURCE_BACKEND(e_source_get_extension(source, E_SOURCE_EXTENSION_CALENDAR));
    const GString8 backend(e_source_backend_dup_backend_name(extension));
    const GString8 name(e_source_dup_display_name(source));
    return {identifierOf(source), name ? name.get() : "", backend != nullptr && backend.get() == birthdayBackend};
}

// The names of the time zones that an event refers to.
void collectZones(std::string_view event, std::set<std::string>& zones) {
    constexpr std::string_view parameter = ";TZID=";
    for (auto at = event.find(parameter); at != std::string_view::npos; at = event.find(parameter, at)) {
        at += parameter.size();
        const std::string_view rest = event.substr(at);
        std::string name(rest.substr(0, rest.find_first_of(":;\r\n")));
        std::erase(name, '"');
        if (zones.size() < maximumZonesPerCalendar) zones.insert(std::move(name));
    }
}

}  // namespace

EdsConnection::~EdsConnection() {
    while (!calendars_.empty())
        forget(calendars_.begin()->first);
    if (registry_) g_signal_handlers_disconnect_by_data(registry_.get(), this);
}

bool EdsConnection::openRegistry() {
    if (registry_) return true;
    // The connection that all of the client library shares, as long as the registry holds it. It would end the process
    // when the bus goes.
    const GObjectPointer<GDBusConnection> bus(
        g_bus_get_sync(G_BUS_TYPE_SESSION, watchdog_.begin(registryLimit), nullptr));
    if (!bus) return false;
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    registry_.reset(e_source_registry_new_sync(watchdog_.begin(registryLimit), nullptr));
    if (!registry_) return false;
    for (const char* signal : {"source-added", "source-removed", "source-changed", "source-enabled", "source-disabled",
                               "notify::default-calendar"}) {
        g_signal_connect_swapped(registry_.get(), signal, G_CALLBACK(announce), this);
    }
    return true;
}

EdsConnection::OpenCalendar* EdsConnection::open(ESource* source) {
    const std::string uid = e_source_get_uid(source);
    if (const auto found = calendars_.find(uid); found != calendars_.end()) {
        if (!found->second.view) watch(found->second);
        return &found->second;
    }
    EClient* client = e_cal_client_connect_sync(source, E_CAL_CLIENT_SOURCE_TYPE_EVENTS, withoutWaitingForNetwork,
                                                watchdog_.begin(calendarLimit), nullptr);
    if (client == nullptr) return nullptr;
    OpenCalendar& calendar = calendars_[uid];
    calendar.client.reset(E_CAL_CLIENT(client));
    g_signal_connect_swapped(client, "backend-died", G_CALLBACK(announce), this);
    watch(calendar);
    return &calendar;
}

void EdsConnection::watch(OpenCalendar& calendar) {
    ECalClientView* view = nullptr;
    if (e_cal_client_get_view_sync(calendar.client.get(), everything, &view, watchdog_.begin(calendarLimit), nullptr) ==
        FALSE) {
        return;
    }
    calendar.view.reset(view);
    // What is there already is read by itself.
    e_cal_client_view_set_flags(view, E_CAL_CLIENT_VIEW_FLAGS_NONE, nullptr);
    for (const char* signal : {"objects-added", "objects-modified", "objects-removed"})
        g_signal_connect_swapped(view, signal, G_CALLBACK(announce), this);
    e_cal_client_view_start(view, nullptr);
}

void EdsConnection::forget(const std::string& uid) {
    const auto calendar = calendars_.extract(uid);
    if (calendar.empty()) return;
    if (calendar.mapped().view) g_signal_handlers_disconnect_by_data(calendar.mapped().view.get(), this);
    g_signal_handlers_disconnect_by_data(calendar.mapped().client.get(), this);
}

std::optional<std::string> EdsConnection::readEvents(ECalClient* client) {
    GSList* list = nullptr;
    if (e_cal_client_get_object_list_sync(client, everything, &list, watchdog_.begin(calendarLimit), nullptr) ==
        FALSE) {
        return std::nullopt;
    }
    std::string events;
    std::set<std::string> zones;
    for (const GSList* each = list; each != nullptr; each = each->next) {
        const GString8 text(i_cal_component_as_ical_string(I_CAL_COMPONENT(each->data)));
        if (!text) continue;
        collectZones(text.get(), zones);
        events += text.get();
    }
    g_slist_free_full(list, g_object_unref);
    std::string definitions;
    for (const auto& name : zones) {
        ICalTimezone* zone = nullptr;  // stays with the client
        if (e_cal_client_get_timezone_sync(client, name.c_str(), &zone, watchdog_.begin(calendarLimit), nullptr) ==
                FALSE ||
            zone == nullptr) {
            continue;
        }
        const GObjectPointer<ICalComponent> component(i_cal_timezone_get_component(zone));
        if (!component) continue;
        const GString8 text(i_cal_component_as_ical_string(component.get()));
        if (text) definitions += text.get();
    }
    return "BEGIN:VCALENDAR\r\n" + definitions + events + "END:VCALENDAR\r\n";
}

std::optional<std::vector<CalendarService::Calendar>> EdsConnection::read() {
    if (!openRegistry()) return std::nullopt;
    std::vector<CalendarService::Calendar> calendars;
    std::set<std::string> present;
    GList* sources = e_source_registry_list_enabled(registry_.get(), E_SOURCE_EXTENSION_CALENDAR);
    for (const GList* each = sources; each != nullptr; each = each->next) {
        ESource* source = E_SOURCE(each->data);
        const std::string uid = e_source_get_uid(source);
        present.insert(uid);
        CalendarService::Calendar calendar{infoOf(source), std::nullopt};
        if (const OpenCalendar* opened = open(source)) {
            calendar.isWatched = opened->view != nullptr;
            calendar.text = readEvents(opened->client.get());
        }
        // Its process may have died; it is opened anew the next time.
        if (!calendar.text) forget(uid);
        calendars.push_back(std::move(calendar));
    }
    g_list_free_full(sources, g_object_unref);
    std::vector<std::string> gone;
    for (const auto& [uid, calendar] : calendars_) {
        if (!present.contains(uid)) gone.push_back(uid);
    }
    for (const auto& uid : gone)
        forget(uid);
    return calendars;
}

CalendarService::Added EdsConnection::add(const std::string& text, const std::atomic<bool>& cancelled) {
    using Outcome = CalendarService::Added::Outcome;
    CalendarService::Added nowhere{Outcome::noCalendar, "", ""};
    if (!openRegistry()) return nowhere;
    const GObjectPointer<ESource> source(e_source_registry_ref_default_calendar(registry_.get()));
    if (!source) return nowhere;
    const OpenCalendar* calendar = open(source.get());
    if (calendar == nullptr || e_client_is_readonly(E_CLIENT(calendar->client.get())) != FALSE) return nowhere;
    const GObjectPointer<ICalComponent> file(i_cal_component_new_from_string(text.c_str()));
    if (!file) return {};
    const GObjectPointer<ICalComponent> event(i_cal_component_get_first_component(file.get(), I_CAL_VEVENT_COMPONENT));
    if (!event) return {};
    // Opening the calendar may have taken longer than anybody waits.
    if (cancelled) return {};
    char* given = nullptr;
    const bool added = e_cal_client_create_object_sync(calendar->client.get(), event.get(), E_CAL_OPERATION_FLAG_NONE,
                                                       &given, watchdog_.begin(calendarLimit), nullptr) != FALSE;
    const GString8 uid(given);
    if (!added || !uid) {
        forget(e_source_get_uid(source.get()));
        return {};
    }
    return {Outcome::added, identifierOf(source.get()), uid.get()};
}

}  // namespace sunpane
