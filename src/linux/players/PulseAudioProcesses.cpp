#include "linux/players/PulseAudioProcesses.h"

#include <pulse/introspect.h>
#include <pulse/proplist.h>
#include <pulse/subscribe.h>
#include <pulse/thread-mainloop.h>

#include <array>
#include <mutex>
#include <string>
#include <utility>

#include "linux/players/PlayerText.h"
#include "linux/players/PulseConnection.h"

namespace sunpane {
namespace {

struct LoopRelease {
    void operator()(pa_threaded_mainloop* loop) const { pa_threaded_mainloop_free(loop); }
};

// A server on which more programs play at once is not listed in every detail.
constexpr std::size_t maximumProcesses = 256;

std::string_view property(const pa_sink_input_info& stream, const char* key) {
    const char* value = stream.proplist == nullptr ? nullptr : pa_proplist_gets(stream.proplist, key);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

}  // namespace

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

class PulseAudioProcesses::Listener {
public:
    Listener() : loop_(pa_threaded_mainloop_new()) {
        if (!loop_ || pa_threaded_mainloop_start(loop_.get()) < 0) {
            loop_.reset();
            finish(std::nullopt);
            return;
        }
        pa_threaded_mainloop_lock(loop_.get());
        connect();
        pa_threaded_mainloop_unlock(loop_.get());
    }

    ~Listener() {
        if (!loop_) return;
        pa_threaded_mainloop_lock(loop_.get());
        disconnect();
        pa_threaded_mainloop_unlock(loop_.get());
        pa_threaded_mainloop_stop(loop_.get());
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    bool loaded() {
        const std::lock_guard lock(mutex_);
        return loaded_;
    }

    std::optional<std::vector<AudioProcess>> list() {
        {
            const std::lock_guard lock(mutex_);
            if (!lost_) return list_;
            lost_ = false;
        }
        if (loop_) {
            pa_threaded_mainloop_lock(loop_.get());
            disconnect();
            connect();
            pa_threaded_mainloop_unlock(loop_.get());
        }
        return std::nullopt;
    }

private:
    // All of the following with the loop locked, or on its thread.

    void connect() {
        context_ = beginPulseConnection(pa_threaded_mainloop_get_api(loop_.get()), onState, this);
        if (!context_) lose();
    }

    void disconnect() {
        listing_.reset();
        subscribing_.reset();
        context_.reset();
    }

    void lose() {
        finish(std::nullopt);
        const std::lock_guard lock(mutex_);
        lost_ = true;
    }

    void finish(std::optional<std::vector<AudioProcess>> list) {
        const std::lock_guard lock(mutex_);
        list_ = std::move(list);
        loaded_ = true;
    }

    void ask() {
        if (listing_ && pa_operation_get_state(listing_.get()) == PA_OPERATION_RUNNING) {
            askAgain_ = true;
            return;
        }
        askAgain_ = false;
        found_.clear();
        listing_.reset(pa_context_get_sink_input_info_list(context_.get(), onStream, this));
        if (!listing_) lose();
    }

    static void onState(pa_context* context, void* userData) {
        auto& self = *static_cast<Listener*>(userData);
        switch (pa_context_get_state(context)) {
            case PA_CONTEXT_READY:
                pa_context_set_subscribe_callback(context, onEvent, &self);
                self.subscribing_.reset(
                    pa_context_subscribe(context, PA_SUBSCRIPTION_MASK_SINK_INPUT, nullptr, nullptr));
                self.ask();
                break;
            case PA_CONTEXT_FAILED:
            case PA_CONTEXT_TERMINATED:
                self.lose();
                break;
            default:
                break;
        }
    }

    static void onEvent(pa_context* /*context*/, pa_subscription_event_type_t /*type*/, std::uint32_t /*index*/,
                        void* userData) {
        static_cast<Listener*>(userData)->ask();
    }

    static void onStream(pa_context* /*context*/, const pa_sink_input_info* stream, int end, void* userData) {
        auto& self = *static_cast<Listener*>(userData);
        if (end < 0) {
            self.finish(std::nullopt);
        } else if (end > 0) {
            self.finish(self.found_);
        } else if (stream != nullptr && self.found_.size() < maximumProcesses) {
            const auto bundle = bundleOfProgram(property(*stream, PA_PROP_APPLICATION_PROCESS_BINARY),
                                                property(*stream, PA_PROP_APPLICATION_ID));
            self.found_.push_back({playerText(bundle), stream->corked == 0});
        }
        // The operation that calls here still counts as running, so a new one replaces it from here only.
        if (end != 0 && self.askAgain_) {
            self.listing_.reset();
            self.ask();
        }
    }

    std::unique_ptr<pa_threaded_mainloop, LoopRelease> loop_;
    PulseContext context_;
    PulseOperation subscribing_;
    PulseOperation listing_;
    bool askAgain_ = false;
    std::vector<AudioProcess> found_;

    std::mutex mutex_;
    bool loaded_ = false;
    bool lost_ = false;
    std::optional<std::vector<AudioProcess>> list_;
};

PulseAudioProcesses::PulseAudioProcesses() : listener_(std::make_unique<Listener>()) {}
PulseAudioProcesses::~PulseAudioProcesses() = default;

bool PulseAudioProcesses::loaded() const {
    return listener_->loaded();
}

std::optional<std::vector<AudioProcess>> PulseAudioProcesses::list() const {
    return listener_->list();
}

}  // namespace sunpane
