#include "linux/players/PulseAudioProcesses.h"

#include <array>
#include <chrono>
#include <utility>

#include "linux/players/PlayerText.h"

namespace sunpane {

std::string_view bundleOfProgram(std::string_view file, std::string_view ownName) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 5> known{{
        {"chrome", "com.google.Chrome"},
        {"google-chrome", "com.google.Chrome"},
        {"chromium", "com.google.Chrome"},
        {"chromium-browser", "com.google.Chrome"},
        {"spotify", "com.spotify.client"},
    }};
    for (const auto& [program, bundle] : known) {
        if (file == program) return bundle;
    }
    return ownName;
}

std::optional<std::vector<AudioProcess>> PulseAudioProcesses::list() {
    SoundServer* server = sound_.server();
    if (server == nullptr) return std::nullopt;
    constexpr std::chrono::duration<double> answerTime{longestAnswer};
    const auto streams = server->streams(deadlineIn(std::chrono::duration_cast<std::chrono::milliseconds>(answerTime)));
    if (!streams) return std::nullopt;
    std::vector<AudioProcess> result;
    for (const auto& stream : *streams)
        result.push_back({playerText(bundleOfProgram(stream.program, stream.application)), stream.playing});
    return result;
}

}  // namespace sunpane
