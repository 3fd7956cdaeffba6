#pragma once

#include <string_view>

namespace sunpane {

/// Names the program to the desktop: queues, folders, broadcasts and desktop files are named after it.
inline constexpr std::string_view appIdentifier = "app.dawnly.Dawnly";

/// The program's object on the session bus, where its name is the identifier.
inline constexpr std::string_view appObjectPath = "/app/dawnly/Dawnly";

}  // namespace sunpane
