#include "reminders/NotificationState.h"

#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "reminders/TriggerMatch.h"

namespace sunpane {
namespace {

using Json = nlohmann::ordered_json;

constexpr int currentVersion = 1;

using Component = std::pair<const char*, std::optional<int> CalendarTrigger::*>;
constexpr std::array<Component, 7> components{{{"year", &CalendarTrigger::year},
                                               {"month", &CalendarTrigger::month},
                                               {"day", &CalendarTrigger::day},
                                               {"weekday", &CalendarTrigger::weekday},
                                               {"hour", &CalendarTrigger::hour},
                                               {"minute", &CalendarTrigger::minute},
                                               {"second", &CalendarTrigger::second}}};

Json toJson(const CalendarTrigger& trigger) {
    Json json = Json::object();
    if (trigger.timeZone) json["timeZone"] = *trigger.timeZone;
    for (const auto& [name, member] : components) {
        if (trigger.*member) json[name] = *(trigger.*member);
    }
    json["repeats"] = trigger.repeats;
    return json;
}

Json toJson(const WaitingRequest& waiting) {
    const NotificationRequest& request = waiting.request;
    const CivilTime& next = waiting.next;
    Json json{{"identifier", request.identifier},
              {"title", request.title},
              {"body", request.body},
              {"userInfo", request.userInfo},
              {"trigger", toJson(request.trigger)},
              {"next", {next.day.year, next.day.month, next.day.day, next.hour, next.minute, next.second}}};
    if (waiting.isSecond) json["second"] = true;
    if (request.expires) json["expires"] = request.expires->sinceReference;
    if (request.intended) json["intended"] = request.intended->sinceReference;
    return json;
}

// The readers throw what the JSON library throws when something is missing or of another type.

struct Unreadable {};

std::map<std::string, std::string> readTexts(const Json& json) {
    std::map<std::string, std::string> texts;
    for (const auto& [key, value] : json.get_ref<const Json::object_t&>())
        texts.emplace(key, value.get<std::string>());
    return texts;
}

int readInteger(const Json& json) {
    const auto number = json.get_ref<const Json::number_integer_t&>();
    if (number < 0 || number > 9999) throw Unreadable{};
    return static_cast<int>(number);
}

CalendarTrigger readTrigger(const Json& json) {
    CalendarTrigger trigger;
    if (json.contains("timeZone")) trigger.timeZone = json["timeZone"].get<std::string>();
    for (const auto& [name, member] : components) {
        if (json.contains(name)) trigger.*member = readInteger(json[name]);
    }
    trigger.repeats = json.at("repeats").get<bool>();
    if (!isValid(trigger)) throw Unreadable{};
    return trigger;
}

CivilTime readTime(const Json& json) {
    if (json.get_ref<const Json::array_t&>().size() != 6) throw Unreadable{};
    CivilTime time{{readInteger(json[0]), readInteger(json[1]), readInteger(json[2])},
                   readInteger(json[3]),
                   readInteger(json[4]),
                   readInteger(json[5])};
    const bool isDay = LocalCalendar("UTC", "en_US_POSIX").startOfDay(time.day).has_value();
    if (!isDay || time.hour > 23 || time.minute > 59 || time.second > 59) throw Unreadable{};
    return time;
}

WaitingRequest readWaiting(const Json& json) {
    WaitingRequest waiting;
    waiting.request.identifier = json.at("identifier").get<std::string>();
    waiting.request.title = json.at("title").get<std::string>();
    waiting.request.body = json.at("body").get<std::string>();
    waiting.request.userInfo = readTexts(json.at("userInfo"));
    waiting.request.trigger = readTrigger(json.at("trigger"));
    if (json.contains("expires")) waiting.request.expires = Instant{json["expires"].get<double>()};
    if (json.contains("intended")) waiting.request.intended = Instant{json["intended"].get<double>()};
    waiting.next = readTime(json.at("next"));
    if (json.contains("second")) waiting.isSecond = json["second"].get<bool>();
    return waiting;
}

ShownNotification readShown(const Json& json) {
    return {json.at("instance").get<std::string>(), json.at("number").get<std::uint32_t>(),
            json.at("identifier").get<std::string>(), readTexts(json.at("userInfo")),
            Instant{json.at("moment").get<double>()}};
}

// What of `list` can be read: one entry that cannot must not cost the user all the others.
template <typename Entry>
std::vector<Entry> readEach(const Json& list, Entry (*read)(const Json&)) {
    std::vector<Entry> entries;
    for (const auto& json : list.get_ref<const Json::array_t&>()) {
        try {
            entries.push_back(read(json));
        } catch (const nlohmann::json::exception&) {
            continue;
        } catch (const Unreadable&) {
            continue;
        }
    }
    return entries;
}

}  // namespace

std::string encodeNotifications(const NotificationState& state) {
    Json json{{"version", currentVersion}, {"waiting", Json::array()}, {"shown", Json::array()}};
    for (const auto& waiting : state.waiting)
        json["waiting"].push_back(toJson(waiting));
    for (const auto& shown : state.shown) {
        json["shown"].push_back({{"instance", shown.instance},
                                 {"number", shown.number},
                                 {"identifier", shown.identifier},
                                 {"userInfo", shown.userInfo},
                                 {"moment", shown.moment.sinceReference}});
    }
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<NotificationState> decodeNotifications(std::string_view bytes) {
    try {
        const Json json = Json::parse(bytes);
        if (json.at("version") != currentVersion) return std::nullopt;
        return NotificationState{readEach(json.at("waiting"), readWaiting), readEach(json.at("shown"), readShown)};
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

}  // namespace sunpane
