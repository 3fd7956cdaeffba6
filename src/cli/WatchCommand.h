#pragma once

#include "cli/Command.h"

namespace sunpane::cli {

/// Runs the folder provider and prints one line of JSON for each list that it delivers, newest briefing first.
int runWatch(Arguments arguments, Environment& environment);

inline constexpr Command watchCommand{
    .name = "watch",
    .usage = "[--json] [FOLDER]",
    .summary = "Follows a folder and prints a line of JSON for each delivery, until it is interrupted.",
    .run = runWatch};

}  // namespace sunpane::cli
