#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/mainloop.h>
#include <pulse/operation.h>
#include <pulse/proplist.h>

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "linux/players/SoundServer.h"

namespace sunpane {
namespace {

/// The server's own name for the output that it uses unless a program asks for another.
constexpr const char* defaultOutput = "@DEFAULT_SINK@";

/// Further streams are left out, and longer names cut.
constexpr std::size_t maximumStreams = 256;
constexpr std::size_t maximumNameBytes = 4096;

struct LoopRelease {
    void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
};
struct ContextRelease {
    void operator()(pa_context* context) const {
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
};
struct OperationRelease {
    /// An operation that has not come to its end never calls back any more.
    void operator()(pa_operation* operation) const {
        if (pa_operation_get_state(operation) == PA_OPERATION_RUNNING) pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
};

class Connection {
public:
    Connection() : loop_(pa_mainloop_new()) {
        if (!loop_) return;
        context_.reset(pa_context_new(pa_mainloop_get_api(loop_.get()), "Dawnly"));
        // No server is started for a question.
        if (context_ && pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
            context_.reset();
        }
    }

    /// Waits until the server has let us in.
    bool open(Deadline deadline) {
        return runUntil(deadline, [this] { return state() == PA_CONTEXT_READY; });
    }

    bool lost() const { return !context_ || !PA_CONTEXT_IS_GOOD(state()); }

    pa_context* context() const { return context_.get(); }

    /// Waits for what was begun. False when it failed or did not come to its end.
    bool finish(pa_operation* begun, Deadline deadline) {
        if (begun == nullptr) return false;
        const std::unique_ptr<pa_operation, OperationRelease> operation(begun);
        return runUntil(deadline, [&] { return pa_operation_get_state(begun) == PA_OPERATION_DONE; });
    }

private:
    pa_context_state_t state() const { return pa_context_get_state(context_.get()); }

    template <class Done>
    bool runUntil(Deadline deadline, Done isDone) {
        while (!lost()) {
            if (isDone()) return true;
            const auto left = timeLeft(deadline).count();
            if (left == 0) return false;
            const auto wait = std::min<std::int64_t>(left, std::numeric_limits<int>::max());
            if (pa_mainloop_prepare(loop_.get(), static_cast<int>(wait)) < 0 || pa_mainloop_poll(loop_.get()) < 0 ||
                pa_mainloop_dispatch(loop_.get()) < 0) {
                return false;
            }
        }
        return false;
    }

    std::unique_ptr<pa_mainloop, LoopRelease> loop_;
    std::unique_ptr<pa_context, ContextRelease> context_;
};

std::string property(const pa_sink_input_info& stream, const char* key) {
    const char* value = stream.proplist == nullptr ? nullptr : pa_proplist_gets(stream.proplist, key);
    return std::string(value == nullptr ? std::string_view() : std::string_view(value).substr(0, maximumNameBytes));
}

/// PulseAudio, or PipeWire in its place.
class PulseServer : public SoundServer {
public:
    std::optional<bool> muted(Deadline deadline) override {
        std::optional<bool> result;
        const auto take = [](pa_context* /*context*/, const pa_sink_info* sink, int /*end*/, void* into) {
            if (sink != nullptr) *static_cast<std::optional<bool>*>(into) = sink->mute != 0;
        };
        const bool answered = ask(deadline, [&](pa_context* context) {
            result.reset();
            return pa_context_get_sink_info_by_name(context, defaultOutput, take, &result);
        });
        return answered ? result : std::nullopt;
    }

    bool setMuted(bool muted, Deadline deadline) override {
        bool done = false;
        const auto take = [](pa_context* /*context*/, int success, void* into) {
            *static_cast<bool*>(into) = success != 0;
        };
        const bool answered = ask(deadline, [&](pa_context* context) {
            return pa_context_set_sink_mute_by_name(context, defaultOutput, muted ? 1 : 0, take, &done);
        });
        return answered && done;
    }

    std::optional<std::vector<SoundStream>> streams(Deadline deadline) override {
        struct Listing {
            std::vector<SoundStream> streams;
            bool complete = false;
        } listing;
        const auto take = [](pa_context* /*context*/, const pa_sink_input_info* stream, int end, void* into) {
            auto& found = *static_cast<Listing*>(into);
            if (end > 0) found.complete = true;
            if (end != 0 || stream == nullptr || found.streams.size() >= maximumStreams) return;
            found.streams.push_back({property(*stream, PA_PROP_APPLICATION_PROCESS_BINARY),
                                     property(*stream, PA_PROP_APPLICATION_ID), stream->corked == 0});
        };
        const bool answered = ask(deadline, [&](pa_context* context) {
            listing = {};
            return pa_context_get_sink_input_info_list(context, take, &listing);
        });
        if (!answered || !listing.complete) return std::nullopt;
        return std::move(listing.streams);
    }

private:
    /// Begins an operation and waits for its end. `begin` may be called twice.
    template <class Begin>
    bool ask(Deadline deadline, Begin begin) {
        // That a server has gone away since the last question is found out by asking; the one that may have been
        // started in its place is asked then.
        const bool mayBeGone = connection_ != nullptr;
        if (askOnce(deadline, begin)) return true;
        const bool isGone = mayBeGone && connection_->lost();
        connection_.reset();
        if (!isGone) return false;
        if (askOnce(deadline, begin)) return true;
        connection_.reset();
        return false;
    }

    template <class Begin>
    bool askOnce(Deadline deadline, Begin begin) {
        if (!connection_) connection_ = std::make_unique<Connection>();
        return connection_->open(deadline) && connection_->finish(begin(connection_->context()), deadline);
    }

    std::unique_ptr<Connection> connection_;
};

}  // namespace
}  // namespace sunpane

extern "C" __attribute__((visibility("default"))) sunpane::SoundServer* sunpaneMakeSoundServer() {
    return new sunpane::PulseServer;
}
