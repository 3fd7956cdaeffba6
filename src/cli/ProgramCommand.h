#pragma once

#include "base/Clock.h"
#include "cli/Command.h"

namespace sunpane::cli {

/// How often it is looked whether the running program has answered, and the time (s) between two looks.
inline constexpr int reportTries = 250;
inline constexpr Seconds reportPoll = 0.02;

/// Unfolds the panel of the running program. `negative`, with one line on `err`, when none runs.
int runExpand(Arguments arguments, Environment& environment);

/// Asks the running program what it shows and prints its answer, one JSON object. `negative`, with one line on `err`,
/// when none runs or it does not answer in time.
int runReport(Arguments arguments, Environment& environment);

inline constexpr Command expandCommand{
    .name = "expand", .usage = "", .summary = "Unfolds the panel of the running program.", .run = runExpand};
inline constexpr Command reportCommand{
    .name = "report", .usage = "", .summary = "Prints what the running program shows, as JSON.", .run = runReport};

}  // namespace sunpane::cli
