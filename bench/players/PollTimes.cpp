#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "linux/players/DevToolsSession.h"
#include "linux/players/MprisPlayer.h"
#include "linux/players/PlayerAdapters.h"
#include "linux/system/JsonUserDefaults.h"
#include "nowplaying/PlayerQueries.h"
#include "nowplaying/PlayerScripts.h"

namespace {

using namespace sunpane;
using Clock = std::chrono::steady_clock;

constexpr int repetitions = 41;
constexpr std::chrono::milliseconds patience{3000};

/// Milliseconds, the median of all repetitions.
double median(std::vector<double> times) {
    std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
    return times[times.size() / 2];
}

double milliseconds(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "not measured: %s\n", what);
    std::exit(1);
}

/// One question to each of the services that a poll asks, over connections that are open already.
class RoundTrips {
public:
    RoundTrips(const PlayerDirectory& directory, const UserDefaults& defaults)
        : players_{directory.spotify().value_or(""), directory.music().value_or("")} {
        const auto endpoint = findDevTools(defaults);
        require(endpoint.has_value(), "no browser");
        browser_ = DevToolsSession::open(*endpoint, deadlineIn(patience));
        require(browser_ != nullptr, "no browser");
    }

    void run() {
        for (const auto& player : players_) {
            const auto request = bus_.playerCall(player, "org.freedesktop.DBus.Properties", "GetAll");
            sd_bus_message_append(request.get(), "s", playerInterface);
            require(bus_.call(request.get(), deadlineIn(patience)) != nullptr, "a player does not answer");
        }
        require(browser_->call({"Browser.getVersion", nlohmann::json::object(), {}}, deadlineIn(patience)).has_value(),
                "the browser does not answer");
        require(volume_.muted(deadlineIn(patience)).has_value(), "the sound server does not answer");
    }

private:
    std::vector<std::string> players_;
    SessionBus bus_;
    std::unique_ptr<DevToolsSession> browser_;
    PulseVolume volume_;
};

}  // namespace

// Prints what one look at two paused players and all the tabs of a browser costs next to one question to each of them.
int main() {
    const JsonUserDefaults defaults(JsonUserDefaults::defaultPath());
    PlayerAdapters adapters(defaults);
    while (!adapters.applications.loaded())
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    const player_queries::Situation situation{{Player::spotify, Player::music}, true, false, true};
    RoundTrips trips(adapters.directory, defaults);
    std::vector<double> polls;
    std::vector<double> questions;
    std::vector<double> tabs;
    for (int i = 0; i < repetitions; ++i) {
        polls.push_back(milliseconds([&] {
            const auto look = player_queries::look(adapters.scripts, situation);
            require(look.track && look.track->player == Player::spotify && !look.track->playing, "another track");
        }));
        questions.push_back(milliseconds([&] { trips.run(); }));
        tabs.push_back(milliseconds([&] {
            const auto reply = adapters.scripts.run(player_scripts::scanTabs());
            require(reply && std::get<std::string>(*reply).size() > 1000, "no tabs");
        }));
    }
    const auto reply = std::get<std::string>(*adapters.scripts.run(player_scripts::scanTabs()));
    std::printf("one poll (%d tabs)                 %7.2f ms\n",
                static_cast<int>(std::count(reply.begin(), reply.end(), '\n')), median(polls));
    std::printf("  of which the tabs                %7.2f ms\n", median(tabs));
    std::printf("one question to each service       %7.2f ms\n", median(questions));
    std::printf("ratio                              %7.1f\n", median(polls) / median(questions));
    return 0;
}
