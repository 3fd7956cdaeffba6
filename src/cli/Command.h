#pragma once

#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Clock.h"
#include "base/WorkQueue.h"
#include "platform/AudioProcesses.h"
#include "platform/CalendarStore.h"
#include "platform/CloudFiles.h"
#include "platform/FileSystem.h"
#include "platform/FolderEvents.h"
#include "platform/MediaCommands.h"
#include "platform/RunningApplications.h"
#include "platform/ScriptRunner.h"
#include "platform/StoreRequests.h"
#include "platform/UserDefaults.h"

namespace sunpane::cli {

/// How a command ends; the shell sees the number.
enum ExitCode : int {
    success = 0,
    /// The command ran and has something to tell: nothing to show, findings, or a value that it does not take.
    negative = 1,
    /// Wrong usage, or what was named cannot be read.
    failure = 2,
    /// A change is neither in the files nor kept for later.
    unsaved = 3,
};

/// What ends a command that runs until it is told to stop.
class Interrupt {
public:
    virtual ~Interrupt() = default;

    /// From now on, being asked to end no longer ends the process but `wait`. Called before any thread is started.
    virtual void arm() = 0;

    /// Blocks until someone asks the process to end or nobody reads its output any more.
    virtual void wait() = 0;
};

/// How telling the running program went.
enum class Broadcast { sent, nobodyListens, noSession };

/// What the running program made of a change that it was asked for, or why it was not asked.
struct ProgramAnswer {
    enum class Reach {
        answered,
        /// No program runs that takes changes, or it ended meanwhile.
        nobody,
        /// One runs and did not answer in time.
        silent,
    };
    Reach reach = Reach::nobody;
    /// When it answered.
    StoreChangeAnswer answer;
};

/// The media players of the user's desktop.
struct PlayerPorts {
    ScriptRunner& scripts;
    RunningApplications& applications;
    AudioProcesses& audio;
    MediaCommands& mediaCommands;
};

/// What a command works with. Everything outlives the command.
struct Environment {
    const Clock& clock;
    UserDefaults& defaults;
    WorkQueueFactory& queues;
    FolderEvents& folderEvents;
    CloudFiles& cloudFiles;
    Interrupt& interrupt;
    std::ostream& out;
    std::ostream& err;
    /// Whether `out` is a terminal that understands colours and bold text.
    bool outIsTerminal = false;

    /// What the commands on the stores need beyond that: files, the folder for journals, and how to wait.
    FileSystem* files = nullptr;
    std::string stateFolder;
    std::function<void(Seconds)> wait;

    /// Connects to the players, for the commands on them. Absent where there is nothing to connect to.
    std::function<std::shared_ptr<const PlayerPorts>()> connectPlayers = nullptr;

    /// Reads the user's calendars as they are around the clock's present. Null, or not `loaded`, when that failed. The
    /// clock outlives the store.
    std::function<std::unique_ptr<CalendarStore>(const Clock& clock)> openCalendars = nullptr;

    /// What the user lets the desktop program do with the calendars, which does not bind who starts a command by hand.
    /// Null: what the calendars themselves say.
    std::function<CalendarAccess()> calendarAccess = nullptr;

    /// Sends the broadcast of that name to the running program. Null where there is no session to send it in.
    std::function<Broadcast(const std::string& name)> broadcast = nullptr;

    /// Asks the running program for a change, before the time at which that expires. Null where it cannot be asked.
    std::function<ProgramAnswer(const StoreChange& change)> askProgram = nullptr;

    /// The settings that take one of a few texts, and these. Any other takes whatever it is given.
    std::map<std::string, std::vector<std::string>> choices = {};
};

/// The words behind the command's name.
using Arguments = std::span<const std::string>;

struct Command {
    std::string_view name;
    /// What may follow the name, as in "[--json] [FILE]".
    std::string_view usage;
    std::string_view summary;
    int (*run)(Arguments arguments, Environment& environment);
};

/// Runs what `arguments` (without the program's name) ask for and returns the exit code.
int runCommandLine(Arguments arguments, Environment& environment);

/// Says on `err` how `command` is used, after one line about what is wrong.
int usageError(const Command& command, std::string_view problem, Environment& environment);

}  // namespace sunpane::cli
