#include "linux/players/PlayerWatcher.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <list>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "linux/players/SessionBus.h"

namespace sunpane {
namespace {

constexpr const char* nameChanges =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',member='NameOwnerChanged',"
    "arg0namespace='org.mpris.MediaPlayer2'";
constexpr const char* playerChanges =
    "type='signal',path='/org/mpris/MediaPlayer2',interface='org.freedesktop.DBus.Properties',"
    "member='PropertiesChanged',arg0='org.mpris.MediaPlayer2.Player'";

// Unanswered questions; a bus on which more players come and go than this is not listened to in every detail.
constexpr std::size_t maximumQuestions = 128;

std::optional<bool> readPlaying(sd_bus_message* message) {
    const char* status = nullptr;
    if (sd_bus_message_read(message, "v", "s", &status) <= 0) return std::nullopt;
    return std::string_view(status) == "Playing";
}

}  // namespace

class PlayerWatcher::Listener {
public:
    explicit Listener(PlayerDirectory& directory)
        : directory_(directory), wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), thread_([this] { run(); }) {}

    ~Listener() {
        ending_ = true;
        wake();
        thread_.join();
        close(wakeUp_);
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    void raise(const std::string& name) {
        {
            const std::lock_guard lock(mutex_);
            if (toRaise_.size() >= PlayerDirectory::maximumPlayers) return;
            toRaise_.push_back(name);
        }
        wake();
    }

    void look() {
        if (lost_.exchange(false)) wake();
    }

private:
    /// A player that was asked whether it plays.
    struct Question {
        Listener* listener;
        std::string name;
        BusSlot slot;
        bool answered = false;
    };

    void wake() const {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = write(wakeUp_, &one, sizeof one);
    }

    void run() {
        while (!ending_) {
            // Nobody wakes this thread but who looks for players or wants one raised, so that a bus that is not there
            // is tried no more often than that.
            if (!bus_) openBus();
            if (bus_ && !process()) forgetBus();
            if (!bus_) giveUp();
            sleep();
        }
        forgetBus();
    }

    void openBus() {
        bus_ = openSessionBus();
        if (bus_ && !begin()) forgetBus();
    }

    void forgetBus() {
        questions_.clear();
        slots_ = {};
        bus_.reset();
        listed_ = false;
        directory_.clear();
    }

    /// What was wanted of players on a bus that is gone is not wanted of others later.
    void giveUp() {
        {
            const std::lock_guard lock(mutex_);
            toRaise_.clear();
        }
        directory_.setLoaded();
        lost_ = true;
    }

    bool begin() {
        std::array<sd_bus_slot*, 3> slots{};
        const bool begun =
            sd_bus_add_match_async(bus_.get(), &slots[0], nameChanges, onNameChange, nullptr, this) >= 0 &&
            sd_bus_add_match_async(bus_.get(), &slots[1], playerChanges, onPlayerChange, nullptr, this) >= 0 &&
            sd_bus_call_method_async(bus_.get(), &slots[2], "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                     "org.freedesktop.DBus", "ListNames", onNames, this, "") >= 0;
        for (std::size_t i = 0; i < slots.size(); ++i)
            slots_[i].reset(slots[i]);
        return begun;
    }

    /// False once the bus is gone.
    bool process() {
        int processed = 0;
        while ((processed = sd_bus_process(bus_.get(), nullptr)) > 0) {
            if (ending_) return true;
        }
        if (processed < 0) return false;
        questions_.remove_if([](const Question& question) { return question.answered; });
        if (listed_ && questions_.empty()) directory_.setLoaded();
        std::vector<std::string> toRaise;
        {
            const std::lock_guard lock(mutex_);
            toRaise.swap(toRaise_);
        }
        for (const auto& name : toRaise) {
            sd_bus_call_method_async(bus_.get(), nullptr, name.c_str(), playerPath, "org.mpris.MediaPlayer2", "Raise",
                                     ignoreAnswer, nullptr, "");
        }
        return true;
    }

    void sleep() {
        std::array<pollfd, 2> sources{pollfd{wakeUp_, POLLIN, 0}, pollfd{-1, 0, 0}};
        int milliseconds = -1;
        if (bus_) {
            sources[1].fd = sd_bus_get_fd(bus_.get());
            sources[1].events = static_cast<short>(std::max(sd_bus_get_events(bus_.get()), 0));
            milliseconds = untilTimeout();
        }
        poll(sources.data(), sources.size(), milliseconds);
        std::uint64_t count = 0;
        [[maybe_unused]] const auto taken = read(wakeUp_, &count, sizeof count);
    }

    int untilTimeout() const {
        std::uint64_t at = 0;
        if (sd_bus_get_timeout(bus_.get(), &at) <= 0 || at == UINT64_MAX) return -1;
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        const auto microseconds =
            static_cast<std::uint64_t>(now.tv_sec) * 1'000'000 + static_cast<std::uint64_t>(now.tv_nsec) / 1'000;
        if (at <= microseconds) return 0;
        return static_cast<int>(std::min<std::uint64_t>((at - microseconds) / 1'000 + 1, 60'000));
    }

    void appeared(const std::string& name, const std::string& owner) {
        directory_.appeared(name, owner);
        if (questions_.size() >= maximumQuestions) return;
        sd_bus_message* made = nullptr;
        if (sd_bus_message_new_method_call(bus_.get(), &made, name.c_str(), playerPath,
                                           "org.freedesktop.DBus.Properties", "Get") < 0) {
            return;
        }
        const BusMessage request(made);
        sd_bus_message_set_auto_start(made, 0);
        if (sd_bus_message_append(made, "ss", playerInterface, "PlaybackStatus") < 0) return;
        auto& question = questions_.emplace_back(Question{this, name, nullptr});
        sd_bus_slot* slot = nullptr;
        const auto time = std::chrono::microseconds(answerTime).count();
        question.answered =
            sd_bus_call_async(bus_.get(), &slot, made, onStatus, &question, static_cast<std::uint64_t>(time)) < 0;
        question.slot.reset(slot);
    }

    static bool isPlayerName(std::string_view name) {
        return name.substr(0, PlayerDirectory::namePrefix.size()) == PlayerDirectory::namePrefix;
    }

    static int onNames(sd_bus_message* message, void* userData, sd_bus_error* /*error*/) {
        auto& self = *static_cast<Listener*>(userData);
        self.listed_ = true;
        if (sd_bus_message_enter_container(message, 'a', "s") <= 0) return 0;
        const char* name = nullptr;
        while (sd_bus_message_read_basic(message, 's', &name) > 0) {
            if (isPlayerName(name)) self.appeared(name, {});
        }
        return 0;
    }

    static int onNameChange(sd_bus_message* message, void* userData, sd_bus_error* /*error*/) {
        auto& self = *static_cast<Listener*>(userData);
        const char* name = nullptr;
        const char* before = nullptr;
        const char* after = nullptr;
        if (sd_bus_message_read(message, "sss", &name, &before, &after) <= 0 || !isPlayerName(name)) return 0;
        self.directory_.disappeared(name);
        if (*after != '\0') self.appeared(name, after);
        return 0;
    }

    static int onPlayerChange(sd_bus_message* message, void* userData, sd_bus_error* /*error*/) {
        auto& self = *static_cast<Listener*>(userData);
        const char* sender = sd_bus_message_get_sender(message);
        if (sender == nullptr || sd_bus_message_skip(message, "s") < 0) return 0;
        if (sd_bus_message_enter_container(message, 'a', "{sv}") <= 0) return 0;
        while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
            const char* key = nullptr;
            if (sd_bus_message_read_basic(message, 's', &key) <= 0) return 0;
            if (std::string_view(key) == "PlaybackStatus") {
                if (const auto playing = readPlaying(message)) self.directory_.setOwnerPlaying(sender, *playing);
                return 0;
            }
            if (sd_bus_message_skip(message, "v") < 0 || sd_bus_message_exit_container(message) < 0) return 0;
        }
        return 0;
    }

    static int onStatus(sd_bus_message* message, void* userData, sd_bus_error* /*error*/) {
        auto& question = *static_cast<Question*>(userData);
        question.answered = true;
        if (sd_bus_message_is_method_error(message, nullptr) != 0) return 0;
        const char* sender = sd_bus_message_get_sender(message);
        const auto playing = readPlaying(message);
        if (sender == nullptr || !playing) return 0;
        question.listener->directory_.setPlaying(question.name, sender, *playing);
        return 0;
    }

    static int ignoreAnswer(sd_bus_message* /*message*/, void* /*userData*/, sd_bus_error* /*error*/) { return 0; }

    PlayerDirectory& directory_;
    const int wakeUp_;
    std::atomic<bool> ending_ = false;
    /// There is no bus, and nobody has looked since that was found.
    std::atomic<bool> lost_ = false;
    std::mutex mutex_;
    std::vector<std::string> toRaise_;

    // The thread's own.
    BusConnection bus_;
    std::array<BusSlot, 3> slots_;
    std::list<Question> questions_;
    bool listed_ = false;

    // Last, so that it starts when everything else is there.
    std::thread thread_;
};

PlayerWatcher::PlayerWatcher(PlayerDirectory& directory) : listener_(std::make_unique<Listener>(directory)) {}

PlayerWatcher::~PlayerWatcher() = default;

void PlayerWatcher::look() {
    listener_->look();
}

void PlayerWatcher::raise(const std::string& name) {
    listener_->raise(name);
}

}  // namespace sunpane
