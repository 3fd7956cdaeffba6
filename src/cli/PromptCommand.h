#pragma once

#include "cli/Command.h"

namespace sunpane::cli {

/// Prints a task for an assistant, as the tour and the settings offer it for copying.
int runPrompt(Arguments arguments, Environment& environment);

inline constexpr Command promptCommand{
    .name = "prompt",
    .usage = "morning|evening|delivery [--folder FOLDER]",
    .summary =
        "Prints the instructions to paste into an assistant's scheduled task: a whole morning or evening task, "
        "or what to add to a task of your own.",
    .run = runPrompt};

}  // namespace sunpane::cli
