#include "cli/BriefCommand.h"

#include <filesystem>
#include <optional>
#include <ostream>
#include <system_error>
#include <utility>

#include "base/Text.h"
#include "cli/TerminalText.h"
#include "core/briefing/BriefingFile.h"
#include "core/briefing/BriefingJson.h"
#include "core/briefing/FolderBriefingProvider.h"

namespace sunpane::cli {
namespace {

void print(const Briefing& briefing, const LocalCalendar& calendar, Environment& environment) {
    std::ostream& out = environment.out;
    const bool onTerminal = environment.outIsTerminal;
    out << bold(printable(briefing.title), onTerminal) << '\n' << briefing.dateLabel(calendar) << '\n';
    for (const auto& section : briefing.sections()) {
        out << '\n' << bold(printable(section.title), onTerminal) << '\n';
        if (!section.intro.empty()) {
            text::LineReader lines(section.intro);
            for (std::string_view line; lines.next(line);)
                out << "  " << renderedMarkdown(line, onTerminal) << '\n';
        }
        for (const auto& item : section.items) {
            out << "  \u2022 " << renderedMarkdown(item.markdown(), onTerminal) << '\n';
        }
    }
    const auto actionItems = briefing.actionItems();
    if (!actionItems.empty()) out << '\n' << bold("Action items", onTerminal) << '\n';
    for (const auto& item : actionItems) {
        out << (item.done ? "  [x] " : "  [ ] ") << renderedMarkdown(item.text, onTerminal);
        if (item.tag) out << " (" << *item.tag << ')';
        out << '\n';
    }
}

std::optional<Briefing> find(const std::string& path, const LocalCalendar& calendar, Environment& environment) {
    std::error_code ignored;
    if (!std::filesystem::is_directory(path, ignored)) return briefing::parseFile(path, calendar);
    auto briefings = FolderBriefingProvider::loadBriefings(path, calendar, environment.cloudFiles);
    if (briefings.empty()) return std::nullopt;
    return std::move(briefings.front());
}

}  // namespace

int runBrief(Arguments arguments, Environment& environment) {
    bool asJson = false;
    std::optional<std::string> path;
    for (const auto& argument : arguments) {
        if (argument == "--json") {
            asJson = true;
        } else if (argument.starts_with("--")) {
            return usageError(briefCommand, "unknown option " + escapedName(argument), environment);
        } else if (path) {
            return usageError(briefCommand, "one file or folder at a time", environment);
        } else {
            path = argument;
        }
    }
    if (!path) path = FolderBriefingProvider::currentDirectory(environment.defaults);

    const LocalCalendar calendar(environment.clock);
    const auto briefing = find(*path, calendar, environment);
    if (!briefing) {
        environment.err << "dawnlyctl brief: no briefing in " << escapedName(*path) << '\n';
        return negative;
    }
    if (asJson) {
        environment.out << toJson(*briefing, calendar) << '\n';
    } else {
        print(*briefing, calendar, environment);
    }
    return success;
}

}  // namespace sunpane::cli
