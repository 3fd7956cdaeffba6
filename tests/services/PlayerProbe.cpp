#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "linux/players/PlayerAdapters.h"
#include "linux/system/JsonUserDefaults.h"
#include "nowplaying/PlayerScripts.h"

namespace {

nlohmann::json toJson(const std::optional<sunpane::ScriptValue>& value) {
    if (!value) return nullptr;
    return std::visit([](const auto& held) { return nlohmann::json(held); }, *value);
}

}  // namespace

// Prints a line of JSON for each line of input: the reply to one of the program's own scripts ("tabs", "toggle ID",
// "show ID", "spotify", "music", "muted"), which applications run ("running") and make sound ("sounds"), or nothing
// after the media key ("key") and after "open BUNDLE".
int main() {
    using namespace sunpane;
    namespace scripts = player_scripts;
    const JsonUserDefaults defaults(JsonUserDefaults::defaultPath());
    PlayerAdapters players(defaults);
    std::string word;
    while (std::cin >> word) {
        nlohmann::json answer;
        std::int64_t id = 0;
        if (word == "tabs") {
            answer = toJson(players.scripts.run(scripts::scanTabs()));
        } else if (word == "toggle" && std::cin >> id) {
            answer = toJson(players.scripts.run(scripts::runInTab(id, scripts::togglePlaybackSnippet())));
        } else if (word == "show" && std::cin >> id) {
            answer = toJson(players.scripts.run(scripts::showTab(id)));
        } else if (word == "spotify" || word == "music") {
            answer = toJson(players.scripts.run(scripts::query(word == "music" ? Player::music : Player::spotify)));
        } else if (word == "muted") {
            answer = toJson(players.scripts.run(scripts::readOutputMuted()));
        } else if (word == "sounds") {
            if (const auto processes = players.audio.list()) {
                answer = nlohmann::json::array();
                for (const auto& process : *processes)
                    answer.push_back({process.bundleIdentifier, process.runsOutput});
            }
        } else if (word == "key") {
            players.scripts.togglePlayPause();
        } else if (word == "open" && std::cin >> word) {
            players.applications.open(word);
        } else if (word == "running") {
            answer = nlohmann::json::array();
            for (const char* bundle : {"com.spotify.client", "com.apple.Music", "com.google.Chrome"}) {
                if (players.applications.isRunning(bundle)) answer.push_back(bundle);
            }
        }
        std::cout << answer.dump() << std::endl;
    }
    return 0;
}
