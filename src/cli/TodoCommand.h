#pragma once

#include "cli/Command.h"

namespace sunpane::cli {

/// Lists or changes the todos of a folder. N counts from 1 as in the list. A number that is not in the list: one line
/// on `err` and `negative`. Only adding makes a named folder that is missing.
int runTodo(Arguments arguments, Environment& environment);

inline constexpr Command todoCommand{
    .name = "todo",
    .usage = "[--folder FOLDER] list [--json] | add TEXT | done N | open N | prio N | rename N TEXT | delete N",
    .summary = "Shows the todos or changes one; prio turns its priority on or off.",
    .run = runTodo};

}  // namespace sunpane::cli
