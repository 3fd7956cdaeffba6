#include "core/briefing/BriefingJson.h"

#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

namespace sunpane {
namespace {

// JSON lets DEL and the C1 controls stand as they are, but they would act on a terminal that shows the output.
std::string withControlsEscaped(const std::string& json) {
    std::string result;
    result.reserve(json.size());
    for (std::size_t i = 0; i < json.size(); ++i) {
        const auto byte = static_cast<unsigned char>(json[i]);
        const auto next = i + 1 < json.size() ? static_cast<unsigned char>(json[i + 1]) : 0U;
        if (byte == 0x7F) {
            result += "\\u007f";
        } else if (byte == 0xC2 && next < 0xA0) {
            constexpr std::string_view digits = "0123456789abcdef";
            result.append("\\u00").append({digits[next >> 4], digits[next & 0x0F]});
            ++i;
        } else {
            result += json[i];
        }
    }
    return result;
}

}  // namespace

std::string toJson(const Briefing& briefing, const LocalCalendar& calendar) {
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
                    {"date", calendar.iso8601(briefing.date)},
                    {"dateLabel", briefing.dateLabel(calendar)},
                    {"title", briefing.title},
                    {"markdown", briefing.markdown},
                    {"sections", std::move(sections)},
                    {"actionItems", std::move(actionItems)}};
    return withControlsEscaped(json.dump());
}

}  // namespace sunpane
