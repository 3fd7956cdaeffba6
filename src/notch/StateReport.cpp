#include "notch/StateReport.h"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace sunpane {
namespace {

std::string pairText(double first, double second) {
    std::array<char, 80> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "{%.17g, %.17g}", first, second);
    return buffer.data();
}

std::string text(Point point) {
    return pairText(point.x, point.y);
}

std::string text(const Rect& rect) {
    return "{" + pairText(rect.x, rect.y) + ", " + pairText(rect.width, rect.height) + "}";
}

}  // namespace

std::string StateReport::toJson() const {
    const nlohmann::ordered_json json = {
        {"expanded", expanded},
        {"theme", theme},
        {"panelFrame", text(panelFrame)},
        {"panelVisible", panelVisible},
        {"panelOnScreen", panelOnScreen},
        {"screenFrame", text(screenFrame)},
        {"briefings", briefings},
        {"suppressed", suppressed},
        {"pointer", text(pointer)},
        {"inZone", inZone},
        {"spaceID", spaceID},
        {"spaceType", spaceType},
    };
    return json.dump();
}

}  // namespace sunpane
