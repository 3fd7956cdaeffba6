#include "linux/system/AutostartLoginService.h"

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

bool switchesOff(std::string_view line) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) return false;
    const auto trim = [](std::string_view text) {
        while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
            text.remove_prefix(1);
        while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r'))
            text.remove_suffix(1);
        return text;
    };
    const auto key = trim(line.substr(0, equals));
    const auto value = trim(line.substr(equals + 1));
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

bool AutostartLoginService::isEnabled() const {
    const auto entry = PosixFileSystem().read(path_, maximumEntryBytes);
    if (entry.status != FileReading::Status::read) return false;
    std::string_view rest = entry.bytes;
    while (!rest.empty()) {
        const auto end = std::min(rest.find('\n'), rest.size());
        if (switchesOff(rest.substr(0, end))) return false;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return true;
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
