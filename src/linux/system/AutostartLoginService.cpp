#include "linux/system/AutostartLoginService.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string_view>
#include <utility>

#include "base/AppIdentity.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/XdgPaths.h"

namespace sunpane {
namespace {

constexpr std::size_t maximumEntryBytes = std::size_t{64} * 1024;
constexpr std::string_view header = "[Desktop Entry]";

/// A path as one argument of an `Exec` line: quoted, with the escapes of the quotes and then those of any string, and
/// no field code in it.
std::string quotedForExec(std::string_view path) {
    std::string quoted = "\"";
    for (const char c : path) {
        if (c == '\\') {
            quoted += "\\\\\\\\";
        } else if (c == '"' || c == '`' || c == '$') {
            quoted += "\\\\";
            quoted += c;
        } else if (c == '%') {
            quoted += "%%";
        } else if (c == '\n') {
            quoted += "\\n";
        } else {
            quoted += c;
        }
    }
    return quoted + "\"";
}

/// A path as a string value.
std::string escaped(std::string_view path) {
    std::string value;
    for (const char c : path)
        value += c == '\\' ? "\\\\" : c == '\n' ? "\\n" : std::string(1, c);
    return value;
}

/// The text that a string value stands for.
std::string unescaped(std::string_view value) {
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const bool isEscape = value[i] == '\\' && i + 1 < value.size();
        const char c = isEscape ? value[++i] : value[i];
        text += !isEscape || c == '\\' ? c : c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : ' ';
    }
    return text;
}

/// Whether a command names the program. Whoever put something before or after it keeps that.
bool contains(std::string_view command, const std::string& program) {
    return (" " + std::string(command) + " ").find(" " + program + " ") != std::string::npos;
}

bool isInPath(const std::string& program) {
    if (program.find('/') != std::string::npos) return access(program.c_str(), X_OK) == 0;
    const char* folders = std::getenv("PATH");  // NOLINT(concurrency-mt-unsafe)
    std::istringstream path(folders != nullptr ? folders : "");
    for (std::string folder; std::getline(path, folder, ':');) {
        if (access(folder.append("/").append(program).c_str(), X_OK) == 0) return true;
    }
    return false;
}

struct Setting {
    std::string_view key;
    std::string_view value;
};

Setting settingIn(std::string_view line) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) return {};
    const auto trim = [](std::string_view text) {
        while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
            text.remove_prefix(1);
        while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r'))
            text.remove_suffix(1);
        return text;
    };
    return {trim(line.substr(0, equals)), trim(line.substr(equals + 1))};
}

std::optional<std::string_view> valueOf(std::string_view key, const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        if (const auto setting = settingIn(line); setting.key == key) return setting.value;
    }
    return std::nullopt;
}

bool switchesOff(std::string_view line) {
    const auto [key, value] = settingIn(line);
    return (key == "Hidden" && value == "true") || (key == "X-GNOME-Autostart-enabled" && value == "false");
}

}  // namespace

AutostartLoginService::AutostartLoginService(std::string folder, std::string program)
    : folder_(std::move(folder)),
      path_(folder_ + "/" + std::string(appIdentifier) + ".desktop"),
      program_(std::move(program)) {}

std::string AutostartLoginService::defaultFolder() {
    return xdg::configHome() + "/autostart";
}

AutostartLoginService::Entry AutostartLoginService::read() const {
    const auto file = PosixFileSystem().read(path_, maximumEntryBytes);
    Entry entry;
    if (file.status != FileReading::Status::read) return entry;
    std::istringstream bytes(file.bytes);
    bool isOwn = true;
    for (std::string line; std::getline(bytes, line);) {
        if (line.ends_with('\r')) line.pop_back();
        const bool startsGroup = line.starts_with('[');
        if (startsGroup) isOwn = line == header;
        if (isOwn && startsGroup) {
            entry.isThere = true;
        } else {
            (isOwn ? entry.own : entry.others).push_back(line);
        }
    }
    return entry;
}

bool AutostartLoginService::isEnabled() const {
    const Entry entry = read();
    if (!entry.isThere || std::any_of(entry.own.begin(), entry.own.end(), switchesOff)) return false;
    const auto needed = valueOf("TryExec", entry.own);
    return !needed || isInPath(unescaped(*needed));
}

bool AutostartLoginService::startsAnotherCopy() const {
    const Entry entry = read();
    const auto command = valueOf("Exec", entry.own);
    return command && !startsUs(*command) && std::none_of(entry.own.begin(), entry.own.end(), switchesOff);
}

bool AutostartLoginService::startsUs(std::string_view command) const {
    return contains(command, quotedForExec(program_)) || contains(command, program_);
}

std::string AutostartLoginService::command(const Entry& entry) const {
    const auto current = valueOf("Exec", entry.own);
    if (current && startsUs(*current)) return std::string(*current);
    const auto needed = valueOf("TryExec", entry.own);
    if (current && needed) {
        const std::string old = unescaped(*needed);
        for (const std::string& form : {quotedForExec(old), old}) {
            if (!contains(*current, form)) continue;
            std::string command(*current);
            return command.replace(command.find(form), form.size(), quotedForExec(program_));
        }
    }
    return quotedForExec(program_);
}

std::optional<std::string> AutostartLoginService::setEnabled(bool enabled) {
    const Entry old = read();
    const std::pair<std::string_view, std::string> ours[] = {
        {"Type", "Application"},
        {"Version", "1.5"},
        {"Name", "Dawnly"},
        {"Comment", "The day's briefing under the notch"},
        {"Exec", command(old)},
        {"TryExec", escaped(program_)},  // a desktop passes over what was uninstalled
        {"Icon", std::string(appIdentifier)},
        {"Terminal", "false"},
        {"NoDisplay", "true"},
    };
    std::string entry(header);
    entry += '\n';
    for (const auto& [key, value] : ours)
        entry += std::string(key) + "=" + value + "\n";
    // What the user, or the desktop for the user, added stays.
    std::string added;
    for (const std::string& line : old.own) {
        const auto key = settingIn(line).key;
        const bool isOurs =
            std::any_of(std::begin(ours), std::end(ours), [key](const auto& own) { return own.first == key; });
        if (!line.empty() && !isOurs && !switchesOff(line)) added += line + "\n";
    }
    if (!enabled && added.empty() && old.others.empty() && command(old) == quotedForExec(program_)) {
        std::error_code error;
        std::filesystem::remove(path_, error);
        if (error) return "Could not remove " + path_ + ": " + error.message() + ".";
        return std::nullopt;
    }
    if (!enabled) entry += "Hidden=true\n";
    entry += added;
    if (!old.others.empty()) entry += '\n';
    for (const std::string& line : old.others)
        entry += line + "\n";
    PosixFileSystem files;
    errno = 0;
    if (files.createFolders(folder_) && files.replaceAtomically(path_, entry)) return std::nullopt;
    return "Could not write " + path_ + (errno != 0 ? std::string(": ") + std::strerror(errno) : "") + ".";
}

}  // namespace sunpane
