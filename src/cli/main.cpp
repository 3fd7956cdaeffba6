#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/ManualRunLoop.h"
#include "cli/Command.h"
#include "cli/ProcessInterrupt.h"
#include "cli/SessionBroadcast.h"
#include "linux/calendar/DesktopCalendarStore.h"
#include "linux/calendar/eds/EdsModule.h"
#include "linux/players/PlayerAdapters.h"
#include "linux/system/InotifyFolderEvents.h"
#include "linux/system/JsonUserDefaults.h"
#include "linux/system/LocalCloudFiles.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/SystemClock.h"
#include "linux/system/ThreadWorkQueue.h"
#include "linux/system/XdgPaths.h"
#include "views/NotchTheme.h"
#include "views/ThemeStore.h"

namespace {

/// A calendar that takes longer to read (s) counts as unreadable.
constexpr sunpane::Seconds longestReading = 30;

std::vector<std::string> themeNames() {
    std::vector<std::string> names;
    for (const auto theme : sunpane::notch_theme::all)
        names.emplace_back(sunpane::notch_theme::rawValue(theme));
    return names;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace sunpane;
    // A reader that goes away makes writing fail, which is noticed, instead of ending the process in between.
    std::signal(SIGPIPE, SIG_IGN);

    const SystemClock clock;
    JsonUserDefaults defaults(JsonUserDefaults::defaultPath());
    ThreadWorkQueueFactory queues;
    InotifyFolderEvents folderEvents;
    LocalCloudFiles cloudFiles;
    PosixFileSystem files;
    cli::ProcessInterrupt interrupt;
    ManualRunLoop loop;
    const auto openCalendars = [&](const Clock& at) {
        // Whoever starts this program by hand wants it to read the calendars.
        auto store = std::make_unique<DesktopCalendarStore>(DesktopCalendarStore::Ports{
            at, loop, queues, folderEvents, files, defaults, xdg::dataFolder() + "/calendars", nullptr, edsCalendars(),
            CalendarAccess::full});
        store->loadNow(longestReading);
        return std::unique_ptr<CalendarStore>(std::move(store));
    };
    const auto connectPlayers = [&] {
        struct Connection {
            explicit Connection(const UserDefaults& settings) : adapters(settings) {}
            PlayerAdapters adapters;
            cli::PlayerPorts ports{adapters.scripts, adapters.applications, adapters.audio, adapters.scripts};
        };
        const auto connection = std::make_shared<Connection>(defaults);
        return std::shared_ptr<const cli::PlayerPorts>(connection, &connection->ports);
    };
    const char* terminal = std::getenv("TERM");
    const bool outIsTerminal = isatty(STDOUT_FILENO) == 1 && terminal != nullptr &&
                               std::string_view(terminal) != "dumb" && std::getenv("NO_COLOR") == nullptr;
    cli::Environment environment{
        .clock = clock,
        .defaults = defaults,
        .queues = queues,
        .folderEvents = folderEvents,
        .cloudFiles = cloudFiles,
        .interrupt = interrupt,
        .out = std::cout,
        .err = std::cerr,
        .outIsTerminal = outIsTerminal,
        .files = &files,
        .stateFolder = xdg::stateFolder(),
        .wait = sleepFor,
        .connectPlayers = connectPlayers,
        .openCalendars = openCalendars,
        .calendarAccess = [&] { return DesktopCalendarStore::rememberedAccess(defaults); },
        .broadcast = cli::broadcastToProgram,
        .askProgram = [&](const StoreChange& change) { return cli::askProgram(change, change.expires - clock.now()); },
        .choices = {{ThemeStore::themeKey, themeNames()},
                    {DesktopCalendarStore::accessKey, DesktopCalendarStore::accessValues()}}};
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const int code = cli::runCommandLine(arguments, environment);
    std::cout.flush();
    // Output that did not arrive is a failure even when the command itself went well.
    return std::cout || code != cli::success ? code : cli::failure;
}
