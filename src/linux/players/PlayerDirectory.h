#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace sunpane {

/// The media players on the session bus and which of them played last. Any thread; answers at once.
///
/// A player is known by its bus name, such as "org.mpris.MediaPlayer2.spotify". Who proxies other players, and would
/// so be a second copy of one of them, is left out.
class PlayerDirectory {
public:
    static constexpr std::string_view namePrefix = "org.mpris.MediaPlayer2.";
    /// Further players are not taken in.
    static constexpr std::size_t maximumPlayers = 64;

    /// `owner` is the connection behind the name, empty while unknown.
    void appeared(const std::string& name, const std::string& owner);
    void disappeared(const std::string& name);
    void clear();
    /// What the player called `name`, with its connection, said about itself.
    void setPlaying(const std::string& name, const std::string& owner, bool playing);
    /// The same for every player behind a connection.
    void setOwnerPlaying(const std::string& owner, bool playing);

    /// Whether the bus was asked for its players.
    bool loaded() const { return loaded_; }
    void setLoaded() { loaded_ = true; }

    std::optional<std::string> spotify() const;
    /// The user's other player, the one that played last when there are several. Never a browser: what plays there is
    /// one of its tabs.
    std::optional<std::string> music() const;
    /// Of all players, browsers too.
    std::optional<std::string> lastPlayed() const;

private:
    struct Player {
        std::string owner;
        bool playing = false;
        /// Grows with each beginning and end of playing; 0 for a player that was never heard of playing.
        std::uint64_t order = 0;
    };

    void setPlaying(Player& player, bool playing);
    template <class Wanted>
    std::optional<std::string> latest(Wanted isWanted) const;

    mutable std::mutex mutex_;
    std::map<std::string, Player> players_;
    std::uint64_t lastOrder_ = 0;
    std::atomic<bool> loaded_ = false;
};

}  // namespace sunpane
