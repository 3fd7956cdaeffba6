#pragma once

#include <QStringList>
#include <optional>

namespace sunpane {

/// What the user asked for when starting the program.
struct CommandLine {
    /// Whether to tell on standard error what happens, instead of only what goes wrong.
    bool isVerbose = false;
    /// Set when there is nothing to start: what was asked for is printed, and the process ends with this code.
    std::optional<int> exitCode;
};

/// Reads the arguments of `main` before there is a toolkit, so that help is to be had without a display. What is not
/// understood here may be the toolkit's.
CommandLine readCommandLine(int argc, const char* const* argv);

/// Whether all of `arguments`, those that the toolkit left, are ours. Otherwise says on standard error which is not.
bool areUnderstood(const QStringList& arguments);

/// Lets through what the user wants to read, on standard error or, where that leads nowhere, in the journal.
void chooseLogging(bool isVerbose);

}  // namespace sunpane
