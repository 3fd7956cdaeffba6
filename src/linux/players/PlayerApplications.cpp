#include "linux/players/PlayerApplications.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>

#include "linux/players/DevToolsEndpoint.h"
#include "linux/system/OwnEnvironment.h"

namespace sunpane {
namespace {

constexpr std::string_view spotifyBundle = "com.spotify.client";
constexpr std::string_view musicBundle = "com.apple.Music";
constexpr std::string_view chromeBundle = "com.google.Chrome";

/// Starts a program that outlives us and has nothing to do with our terminal. Nothing happens when it is not installed.
void start(std::string program) {
    std::string detacher = "setsid";
    std::string fork = "--fork";
    const std::array<char*, 4> arguments{detacher.data(), fork.data(), program.data(), nullptr};
    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0) return;
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    const auto environment = environmentForOthers();
    pid_t child = 0;
    // The child only starts the program, so that whoever takes in orphans waits for that, and we wait for next to
    // nothing.
    if (posix_spawnp(&child, detacher.c_str(), &actions, nullptr, arguments.data(), environment.data()) == 0) {
        waitpid(child, nullptr, 0);
    }
    posix_spawn_file_actions_destroy(&actions);
}

}  // namespace

bool PlayerApplications::loaded() const {
    return directory_.loaded();
}

bool PlayerApplications::isRunning(std::string_view bundleIdentifier) const {
    watcher_.look();
    if (bundleIdentifier == spotifyBundle) return directory_.spotify().has_value();
    if (bundleIdentifier == musicBundle) return directory_.music().has_value();
    if (bundleIdentifier == chromeBundle) return findDevTools(defaults_).has_value();
    return false;
}

void PlayerApplications::open(std::string_view bundleIdentifier) {
    if (bundleIdentifier == spotifyBundle) {
        if (const auto player = directory_.spotify()) {
            watcher_.raise(*player);
        } else {
            start("spotify");
        }
    } else if (bundleIdentifier == musicBundle) {
        if (const auto player = directory_.music()) watcher_.raise(*player);
    }
}

}  // namespace sunpane
