#pragma once

#include <string_view>

namespace sunpane {

/// Names the program to the desktop: queues, folders, broadcasts and desktop files are named after it.
inline constexpr std::string_view appIdentifier = "app.dawnly.Dawnly";

}  // namespace sunpane
