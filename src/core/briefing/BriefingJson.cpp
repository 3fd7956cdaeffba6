#include "core/briefing/BriefingJson.h"

#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

namespace sunpane {
namespace {

// JSON lets DEL and the C1 controls stand as they are, but they would act on a terminal that shows the output.
std::string withControlsEscaped(const std::string& json) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    std::size_t start = 0;
    for (std::size_t at = 0; (at = json.find_first_of("\x7F\xC2", at)) != std::string::npos; ++at) {
        const bool isDelete = json[at] == '\x7F';
        const auto code = static_cast<unsigned char>(isDelete ? '\x7F' : json[at + 1]);
        if (code >= 0xA0) continue;
        result.append(json, start, at - start).append("\\u00").append({digits[code >> 4], digits[code & 0x0F]});
        start = at + (isDelete ? 1 : 2);
    }
    return result.append(json, start);
}

}  // namespace

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
    return withControlsEscaped(json.dump());
}

}  // namespace sunpane
