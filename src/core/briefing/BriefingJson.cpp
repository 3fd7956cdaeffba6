#include "core/briefing/BriefingJson.h"

#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "base/Text.h"

namespace sunpane {
std::string toJson(const Briefing& briefing, const LocalCalendar& calendar) {
    return toJson(briefing, calendar.iso8601(briefing.date), briefing.dateLabel(calendar));
}

std::string toJson(const Briefing& briefing, std::string_view date, std::string_view dateLabel) {
    // Keeps the order in which members are added.
    using Json = nlohmann::ordered_json;
    Json sections = Json::array();
    for (const auto& section : briefing.sections()) {
        Json items = Json::array();
        for (const auto& item : section.items) {
            items.push_back(Json{
                {"id", item.id()}, {"markdown", item.markdown()}, {"suggestedTodoText", item.suggestedTodoText()}});
        }
        sections.push_back(
            Json{{"id", section.id}, {"title", section.title}, {"intro", section.intro}, {"items", std::move(items)}});
    }
    Json actionItems = Json::array();
    for (const auto& item : briefing.actionItems()) {
        actionItems.push_back(
            Json{{"text", item.text}, {"tag", item.tag ? Json(*item.tag) : Json(nullptr)}, {"done", item.done}});
    }
    const Json json{{"id", briefing.id},
                    {"date", date},
                    {"dateLabel", dateLabel},
                    {"title", briefing.title},
                    {"markdown", briefing.markdown},
                    {"sections", std::move(sections)},
                    {"actionItems", std::move(actionItems)}};
    return text::withControlsEscaped(json.dump());
}

}  // namespace sunpane
