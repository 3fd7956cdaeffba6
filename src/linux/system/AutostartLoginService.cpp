#include "linux/system/AutostartLoginService.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <utility>

#include "base/AppIdentity.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/XdgPaths.h"

namespace sunpane {
namespace {

constexpr std::size_t maximumEntryBytes = std::size_t{64} * 1024;

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

std::vector<std::string> AutostartLoginService::lines() const {
    const auto entry = PosixFileSystem().read(path_, maximumEntryBytes);
    if (entry.status != FileReading::Status::read) return {};
    std::vector<std::string> lines{""};
    for (const char c : entry.bytes) {
        if (c == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += c;
        }
    }
    return lines;
}

bool AutostartLoginService::isEnabled() const {
    const auto entry = lines();
    return !entry.empty() && std::none_of(entry.begin(), entry.end(), switchesOff);
}

bool AutostartLoginService::startsAnotherCopy() const {
    const auto entry = lines();
    return std::any_of(entry.begin(), entry.end(), [this](const std::string& line) {
        const auto [key, value] = settingIn(line);
        // Whoever put something before or after the program keeps it.
        const std::string command = " " + std::string(value) + " ";
        return key == "Exec" && command.find(" " + quotedForExec(program_) + " ") == std::string::npos &&
               command.find(" " + program_ + " ") == std::string::npos;
    });
}

std::optional<std::string> AutostartLoginService::setEnabled(bool enabled) {
    if (!enabled) {
        std::error_code error;
        std::filesystem::remove(path_, error);
        if (error) return "Could not remove " + path_ + ": " + error.message() + ".";
        return std::nullopt;
    }
    const std::string entry =
        "[Desktop Entry]\nType=Application\nVersion=1.5\nName=Dawnly\nComment=The day's briefing under the notch\n"
        "Exec=" +
        quotedForExec(program_) + "\nTryExec=" + escaped(program_) +  // a desktop passes over what was uninstalled
        "\nIcon=" + std::string(appIdentifier) + "\nTerminal=false\nNoDisplay=true\n";
    PosixFileSystem files;
    errno = 0;
    if (files.createFolders(folder_) && files.replaceAtomically(path_, entry)) return std::nullopt;
    return "Could not write " + path_ + (errno != 0 ? std::string(": ") + std::strerror(errno) : "") + ".";
}

}  // namespace sunpane
