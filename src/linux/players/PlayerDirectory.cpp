#include "linux/players/PlayerDirectory.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace sunpane {
namespace {

/// Whether the player is called `program`, or is one of several instances of it.
bool isProgram(std::string_view name, std::string_view program) {
    const auto own = name.substr(PlayerDirectory::namePrefix.size());
    return own.substr(0, program.size()) == program && (own.size() == program.size() || own[program.size()] == '.');
}

bool isSpotify(std::string_view name) {
    return isProgram(name, "spotify");
}

bool isBrowser(std::string_view name) {
    static constexpr std::array<std::string_view, 12> browsers{
        "chromium", "chrome", "google-chrome", "firefox",  "brave",  "edge",
        "msedge",   "opera",  "vivaldi",       "epiphany", "falkon", "plasma-browser-integration"};
    return std::any_of(browsers.begin(), browsers.end(),
                       [&](std::string_view browser) { return isProgram(name, browser); });
}

bool isPlayer(std::string_view name) {
    return name.size() > PlayerDirectory::namePrefix.size() &&
           name.substr(0, PlayerDirectory::namePrefix.size()) == PlayerDirectory::namePrefix &&
           !isProgram(name, "playerctld");
}

}  // namespace

void PlayerDirectory::appeared(const std::string& name, const std::string& owner) {
    const std::lock_guard lock(mutex_);
    if (!isPlayer(name) || (players_.size() >= maximumPlayers && players_.count(name) == 0)) return;
    players_[name].owner = owner;
}

void PlayerDirectory::disappeared(const std::string& name) {
    const std::lock_guard lock(mutex_);
    players_.erase(name);
}

void PlayerDirectory::clear() {
    const std::lock_guard lock(mutex_);
    players_.clear();
}

void PlayerDirectory::setPlaying(const std::string& name, const std::string& owner, bool playing) {
    const std::lock_guard lock(mutex_);
    const auto found = players_.find(name);
    if (found == players_.end()) return;
    found->second.owner = owner;
    setPlaying(found->second, playing);
}

void PlayerDirectory::setOwnerPlaying(const std::string& owner, bool playing) {
    const std::lock_guard lock(mutex_);
    for (auto& [name, player] : players_) {
        if (player.owner == owner) setPlaying(player, playing);
    }
}

void PlayerDirectory::setPlaying(Player& player, bool playing) {
    if (player.playing == playing) return;
    player.playing = playing;
    player.order = ++lastOrder_;
}

template <class Wanted>
std::optional<std::string> PlayerDirectory::latest(Wanted isWanted) const {
    const std::lock_guard lock(mutex_);
    auto best = players_.end();
    const auto rank = [](const Player& player) { return std::tuple(player.playing, player.order); };
    for (auto player = players_.begin(); player != players_.end(); ++player) {
        if (!isWanted(player->first)) continue;
        if (best == players_.end() || rank(best->second) < rank(player->second)) best = player;
    }
    if (best == players_.end()) return std::nullopt;
    return best->first;
}

std::optional<std::string> PlayerDirectory::spotify() const {
    return latest(isSpotify);
}

std::optional<std::string> PlayerDirectory::music() const {
    return latest([](std::string_view name) { return !isSpotify(name) && !isBrowser(name); });
}

std::optional<std::string> PlayerDirectory::lastPlayed() const {
    return latest([](std::string_view /*name*/) { return true; });
}

}  // namespace sunpane
