#include "linux/system/XdgPaths.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string_view>

namespace sunpane::xdg {
namespace {

constexpr std::string_view ownFolder = "/dawnly";

std::string absoluteVariable(const char* name, std::string fallback) {
    const char* value = std::getenv(name);
    return value != nullptr && value[0] == '/' ? std::string(value) : std::move(fallback);
}

}  // namespace

std::string homeFolder() {
    std::string home = absoluteVariable("HOME", "");
    if (!home.empty()) return home;
    passwd entry{};
    passwd* found = nullptr;
    std::array<char, 4096> buffer{};
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr)
        return entry.pw_dir;
    return "/";
}

std::string configHome() {
    return absoluteVariable("XDG_CONFIG_HOME", homeFolder() + "/.config");
}

std::string configFolder() {
    return configHome().append(ownFolder);
}

std::string dataFolder() {
    return absoluteVariable("XDG_DATA_HOME", homeFolder() + "/.local/share").append(ownFolder);
}

std::string stateFolder() {
    return absoluteVariable("XDG_STATE_HOME", homeFolder() + "/.local/state").append(ownFolder);
}

std::string runtimeFolder() {
    return absoluteVariable("XDG_RUNTIME_DIR", "/tmp");
}

}  // namespace sunpane::xdg
