#pragma once

#include "cli/Command.h"

namespace sunpane::cli {

/// Lists the flags of a folder's cards, or makes a card a priority or not. Only making one a priority makes a
/// named folder that is missing.
int runFlags(Arguments arguments, Environment& environment);

inline constexpr Command flagsCommand{.name = "flags",
                                      .usage = "[--folder FOLDER] list [--json] | prio KEY TEXT | unprio KEY",
                                      .summary = "Shows the flags on briefing cards or changes a priority.",
                                      .run = runFlags};

}  // namespace sunpane::cli
