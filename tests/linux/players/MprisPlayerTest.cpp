#include "linux/players/MprisPlayer.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <functional>

#include "linux/players/PlayerText.h"

namespace sunpane {
namespace {

/// A message that was filled by `fill`, as its receiver gets it. It goes nowhere: nobody is at the other end.
class ReceivedMessage {
public:
    explicit ReceivedMessage(const std::function<void(sd_bus_message*)>& fill) {
        std::array<int, 2> ends{};
        sd_bus* bus = nullptr;
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0 || sd_bus_new(&bus) < 0) return;
        bus_.reset(bus);
        otherEnd_ = ends[1];
        sd_bus_message* message = nullptr;
        if (sd_bus_set_fd(bus, ends[0], ends[0]) < 0 || sd_bus_start(bus) < 0 ||
            sd_bus_message_new_signal(bus, &message, "/", "a.b", "C") < 0) {
            return;
        }
        message_.reset(message);
        fill(message);
        sealed_ = sd_bus_message_seal(message, 1, 0) >= 0 && sd_bus_message_rewind(message, 1) >= 0;
    }
    ~ReceivedMessage() {
        if (otherEnd_ >= 0) close(otherEnd_);
    }
    ReceivedMessage(const ReceivedMessage&) = delete;
    ReceivedMessage& operator=(const ReceivedMessage&) = delete;

    bool sealed() const { return sealed_; }
    sd_bus_message* get() const { return message_.get(); }

private:
    BusConnection bus_;
    BusMessage message_;
    int otherEnd_ = -1;
    bool sealed_ = false;
};

TEST(MprisPlayer, ReadsWhatAPlayerSaysWhateverItIs) {
    const std::string huge(1'000'000, 'x');
    const struct {
        const char* name;
        std::function<void(sd_bus_message*)> fill;
        PlayerState state;
    } cases[] = {
        {"a whole answer",
         [](sd_bus_message* m) {
             sd_bus_message_append(m, "a{sv}", 4, "Volume", "d", 0.5, "PlaybackStatus", "s", "Playing", "Metadata",
                                   "a{sv}", 5, "mpris:trackid", "o", "/a", "xesam:title", "s", "Song", "xesam:artist",
                                   "as", 2, "A", "B", "mpris:artUrl", "s", "file:///c.png", "mpris:length", "x",
                                   std::int64_t{5}, "CanPlay", "b", 1);
         },
         {"playing", "Song", "A, B", "file:///c.png"}},
        {"nothing", [](sd_bus_message* m) { sd_bus_message_append(m, "a{sv}", 0); }, {"stopped", "", "", ""}},
        {"no dictionary", [](sd_bus_message* m) { sd_bus_message_append(m, "s", "Playing"); }, {"stopped", "", "", ""}},
        {"an empty message", [](sd_bus_message*) {}, {"stopped", "", "", ""}},
        {"one artist as text",
         [](sd_bus_message* m) {
             sd_bus_message_append(m, "a{sv}", 2, "Metadata", "a{sv}", 1, "xesam:artist", "s", "A", "PlaybackStatus",
                                   "s", "Paused");
         },
         {"paused", "", "A", ""}},
        {"other types",
         [](sd_bus_message* m) {
             sd_bus_message_append(m, "a{sv}", 3, "PlaybackStatus", "u", 7, "Metadata", "as", 1, "x", "Metadata",
                                   "a{sv}", 4, "xesam:title", "as", 1, "x", "xesam:artist", "i", 1, "mpris:artUrl", "v",
                                   "s", "x", "xesam:title", "s", "late");
         },
         {"stopped", "late", "", ""}},
        {"an unknown state",
         [](sd_bus_message* m) { sd_bus_message_append(m, "a{sv}", 1, "PlaybackStatus", "s", "playing"); },
         {"stopped", "", "", ""}},
        {"hostile texts",
         [&](sd_bus_message* m) {
             sd_bus_message_append(m, "a{sv}", 2, "PlaybackStatus", "s", "Playing", "Metadata", "a{sv}", 2,
                                   "xesam:title", "s", "a|||b\nc\x1b", "xesam:artist", "as", 3, huge.c_str(),
                                   huge.c_str(), huge.c_str());
         },
         {"playing", "a||b c ", huge.substr(0, maximumPlayerText), ""}},
    };
    for (const auto& test : cases) {
        const ReceivedMessage message(test.fill);
        ASSERT_TRUE(message.sealed()) << test.name;
        const auto state = readPlayerState(message.get());
        EXPECT_EQ(state.state, test.state.state) << test.name;
        EXPECT_EQ(state.title, test.state.title) << test.name;
        EXPECT_EQ(state.artist, test.state.artist) << test.name;
        EXPECT_EQ(state.artworkUrl, test.state.artworkUrl) << test.name;
    }
}

}  // namespace
}  // namespace sunpane
