#pragma once

#include "cli/Command.h"

namespace sunpane::cli {

/// Drops the flags that have lapsed, writes `feedback.json` anew and prints it.
int runFeedback(Arguments arguments, Environment& environment);

inline constexpr Command feedbackCommand{.name = "feedback",
                                         .usage = "[--folder FOLDER]",
                                         .summary = "Writes the feedback for the agent anew and prints it.",
                                         .run = runFeedback};

}  // namespace sunpane::cli
