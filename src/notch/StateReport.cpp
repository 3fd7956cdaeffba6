#include "notch/StateReport.h"

#include <array>
#include <cassert>
#include <charconv>
#include <nlohmann/json.hpp>

namespace sunpane {
namespace {

// With a point whatever the user's locale writes.
std::string numberText(double number) {
    std::array<char, 32> buffer{};
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    assert(written.ec == std::errc());
    return {buffer.data(), written.ptr};
}

std::string pairText(double first, double second) {
    return "{" + numberText(first) + ", " + numberText(second) + "}";
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
