#include "linux/players/PlayerApplications.h"

#include "linux/players/DevToolsEndpoint.h"

namespace sunpane {
namespace {

constexpr std::string_view spotifyBundle = "com.spotify.client";
constexpr std::string_view musicBundle = "com.apple.Music";
constexpr std::string_view chromeBundle = "com.google.Chrome";

}  // namespace

bool PlayerApplications::loaded() const {
    return directory_.loaded();
}

bool PlayerApplications::isRunning(std::string_view bundleIdentifier) const {
    if (bundleIdentifier == spotifyBundle) return directory_.spotify().has_value();
    if (bundleIdentifier == musicBundle) return directory_.music().has_value();
    if (bundleIdentifier == chromeBundle) return findDevTools(defaults_).has_value();
    return false;
}

void PlayerApplications::open(std::string_view bundleIdentifier) {
    if (bundleIdentifier == spotifyBundle) {
        // The bus starts it if it does not run, where it was installed with that ability.
        watcher_.raise(directory_.spotify().value_or(std::string(PlayerDirectory::namePrefix) + "spotify"));
    } else if (bundleIdentifier == musicBundle) {
        if (const auto player = directory_.music()) watcher_.raise(*player);
    }
}

}  // namespace sunpane
