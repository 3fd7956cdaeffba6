#pragma once

#include <cstdint>
#include <string>

#include "base/Geometry.h"

namespace sunpane {

/// What the program tells of itself when a tool or a script asks.
struct StateReport {
    /// Where the running program writes it, replacing the last one as a whole.
    static constexpr const char* path = "/tmp/dawnly-state.json";

    bool expanded = false;
    std::string theme;
    Rect panelFrame;
    bool panelVisible = false;
    bool panelOnScreen = false;
    Rect screenFrame;
    int briefings = 0;
    bool suppressed = false;
    Point pointer;
    bool inZone = false;
    std::uint64_t spaceID = 0;  // 0: unknown
    std::int32_t spaceType = 0;

    /// One JSON object on one line, with a member for each field. Rectangles read "{{x, y}, {width, height}}" and
    /// points "{x, y}".
    std::string toJson() const;
};

}  // namespace sunpane
