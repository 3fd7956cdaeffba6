#include <algorithm>
#include <array>
#include <ostream>
#include <string>

#include "cli/AgendaCommand.h"
#include "cli/BriefCommand.h"
#include "cli/CheckCommand.h"
#include "cli/Command.h"
#include "cli/DefaultsCommand.h"
#include "cli/FeedbackCommand.h"
#include "cli/FlagsCommand.h"
#include "cli/PlayingCommand.h"
#include "cli/ProgramCommand.h"
#include "cli/PromptCommand.h"
#include "cli/TodoCommand.h"
#include "cli/WatchCommand.h"

namespace sunpane::cli {
namespace {

// Every command of the program; a new one is a line here and a pair of files.
constexpr std::array commands{briefCommand,  checkCommand,    watchCommand,   todoCommand,
                              flagsCommand,  feedbackCommand, playingCommand, playPauseCommand,
                              nextCommand,   previousCommand, muteCommand,    agendaCommand,
                              expandCommand, reportCommand,   promptCommand,  defaultsCommand};

std::string usageOf(const Command& command) {
    std::string usage = "dawnlyctl " + std::string(command.name);
    if (!command.usage.empty()) usage.append(" ").append(command.usage);
    return usage;
}

// Behind "--" stands what is meant literally, and "-h" may be part of a text.
bool asksForHelp(Arguments arguments) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    return std::find(arguments.begin(), end, "--help") != end || (!arguments.empty() && arguments.front() == "-h");
}

void printHelp(std::ostream& out) {
    out << "dawnlyctl: the briefings, todos, flags, calendars and settings of dawnly, and what is playing\n\nUsage:\n";
    for (const auto& command : commands) {
        out << "  " << usageOf(command) << "\n      " << command.summary << '\n';
    }
    out << "  dawnlyctl --help | --version\n"
           "\nA FOLDER that is left out is the one that the panel shows.\n";
}

}  // namespace

int usageError(const Command& command, std::string_view problem, Environment& environment) {
    environment.err << "dawnlyctl " << command.name << ": " << problem << "\nusage: " << usageOf(command) << '\n';
    return failure;
}

int runCommandLine(Arguments arguments, Environment& environment) {
    if (arguments.empty()) {
        printHelp(environment.err);
        return failure;
    }
    const std::string& name = arguments.front();
    if (name == "--help" || name == "-h" || name == "help") {
        printHelp(environment.out);
        return success;
    }
    if (name == "--version" || name == "-v") {
        environment.out << "dawnlyctl " << SUNPANE_VERSION << '\n';
        return success;
    }
    const auto* command =
        std::find_if(commands.begin(), commands.end(), [&](const Command& c) { return c.name == name; });
    if (command == commands.end()) {
        environment.err << "dawnlyctl: there is no such command; see dawnlyctl --help\n";
        return failure;
    }
    const Arguments rest = arguments.subspan(1);
    if (asksForHelp(rest)) {
        environment.out << "usage: " << usageOf(*command) << '\n' << command->summary << '\n';
        return success;
    }
    return command->run(rest, environment);
}

}  // namespace sunpane::cli
