#pragma once

#include "cli/Command.h"

namespace sunpane::cli {

/// Reads and changes the settings. The running program sees a change the next time it reads the setting. `negative`
/// when the key to read is not set or takes other values than the one to write, `failure` when a change could not be
/// kept.
int runDefaults(Arguments arguments, Environment& environment);

inline constexpr Command defaultsCommand{
    .name = "defaults",
    .usage = "read [--json] [KEY] | write KEY [--string|--bool|--int|--float|--array] VALUE... | delete KEY",
    .summary = "Reads, writes and deletes settings.",
    .run = runDefaults};

}  // namespace sunpane::cli
