#include "cli/WatchCommand.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/TerminalText.h"
#include "core/briefing/FolderBriefingProvider.h"

namespace sunpane::cli {

int runWatch(Arguments arguments, Environment& environment) {
    std::optional<std::string> folder;
    for (const auto& argument : arguments) {
        // Every line is JSON already; the option is taken so that all commands are called alike.
        if (argument == "--json") continue;
        if (argument.starts_with("--")) {
            return usageError(watchCommand, "unknown option " + escapedName(argument), environment);
        }
        if (folder) return usageError(watchCommand, "one folder at a time", environment);
        folder = argument;
    }
    std::error_code ignored;
    if (folder && !std::filesystem::is_directory(*folder, ignored)) {
        environment.err << "dawnlyctl watch: there is no folder " << escapedName(*folder) << '\n';
        return failure;
    }
    if (!folder) folder = FolderBriefingProvider::currentDirectory(environment.defaults);

    environment.interrupt.arm();
    FolderBriefingProvider provider(*folder, {.clock = environment.clock,
                                              .queues = environment.queues,
                                              .folderEvents = environment.folderEvents,
                                              .cloudFiles = environment.cloudFiles});
    // One delivery at a time, and nothing else writes meanwhile.
    provider.start([&environment](const std::vector<Briefing>& briefings) {
        auto ids = nlohmann::ordered_json::array();
        for (const auto& briefing : briefings)
            ids.push_back(briefing.id);
        nlohmann::ordered_json line{{"at", environment.clock.now().unixTime()}, {"briefings", std::move(ids)}};
        environment.out << line.dump() << '\n' << std::flush;
    });
    environment.interrupt.wait();
    return success;
}

}  // namespace sunpane::cli
