#include "cli/CheckCommand.h"

#include <fcntl.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <ostream>
#include <system_error>
#include <vector>

#include "base/Text.h"
#include "cli/TerminalText.h"
#include "core/briefing/BriefingCheck.h"
#include "core/briefing/BriefingFile.h"

namespace sunpane::cli {
namespace {

int checkFile(const std::string& path, briefing::FileText& file, const LocalCalendar& calendar,
              Environment& environment) {
    if (!briefing::readFile(AT_FDCWD, path.c_str(), file)) {
        environment.err << "dawnlyctl check: cannot read " << escapedName(path) << '\n';
        return failure;
    }
    const auto findings = briefing::check(briefing::fileName(path), file.bytes, calendar);
    const std::string name = escapedName(path);
    for (const auto& finding : findings) {
        environment.out << name << ':' << finding.line << ": " << finding.message << '\n';
    }
    if (!text::isValidUtf8(file.bytes)) return failure;
    return findings.empty() ? success : negative;
}

// Absent when the folder cannot be listed.
std::optional<std::vector<std::string>> briefingsIn(const std::string& folder) {
    std::error_code error;
    std::vector<std::string> paths;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (briefing::isMarkdownName(entry->path().filename().string())) paths.push_back(entry->path());
    }
    if (error) return std::nullopt;
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace

int runCheck(Arguments arguments, Environment& environment) {
    if (arguments.size() != 1 || arguments[0].starts_with("--")) {
        return usageError(checkCommand, "one file or folder is needed", environment);
    }
    const LocalCalendar calendar(environment.clock);
    briefing::FileText file;
    std::error_code ignored;
    if (!std::filesystem::is_directory(arguments[0], ignored)) {
        return checkFile(arguments[0], file, calendar, environment);
    }
    const auto paths = briefingsIn(arguments[0]);
    if (!paths) {
        environment.err << "dawnlyctl check: cannot list " << escapedName(arguments[0]) << '\n';
        return failure;
    }
    int code = success;
    for (const auto& path : *paths)
        code = std::max(code, checkFile(path, file, calendar, environment));
    return code;
}

}  // namespace sunpane::cli
