#pragma once

#include "cli/Command.h"

namespace sunpane::cli {

/// Shows a file, or the newest briefing of a folder (by default the current one), for reading or as one line of JSON.
/// Nothing to show: one line on `err` and `negative`.
int runBrief(Arguments arguments, Environment& environment);

inline constexpr Command briefCommand{.name = "brief",
                                      .usage = "[--json] [FILE|FOLDER]",
                                      .summary = "Shows a briefing, or the newest one of a folder.",
                                      .run = runBrief};

}  // namespace sunpane::cli
