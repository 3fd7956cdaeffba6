#pragma once

#include <string>

#include "cli/Command.h"

namespace sunpane::cli {

/// Sends a broadcast over the session bus, its name up to the last dot being the interface and the rest the member,
/// when the program runs. Waits a few seconds at most for a bus that does not answer.
Broadcast broadcastToProgram(const std::string& name);

/// Calls the running program over the session bus and waits for its answer, at most `patience` (s).
ProgramAnswer askProgram(const StoreChange& change, Seconds patience);

}  // namespace sunpane::cli
