#pragma once

#include "cli/Command.h"

namespace sunpane::cli {

/// Reports what is wrong with a briefing, or with every briefing of a folder. Ends with `success` when nothing is,
/// `negative` with findings and `failure` when something cannot be read.
int runCheck(Arguments arguments, Environment& environment);

inline constexpr Command checkCommand{
    .name = "check",
    .usage = "FILE|FOLDER",
    .summary = "Says what will not show as the writer meant it, one file:line: message each.",
    .run = runCheck};

}  // namespace sunpane::cli
