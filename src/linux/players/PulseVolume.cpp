#include "linux/players/PulseVolume.h"

#include <pulse/introspect.h>
#include <pulse/mainloop.h>

#include <algorithm>
#include <limits>

#include "linux/players/PulseConnection.h"

namespace sunpane {
namespace {

/// The server's own name for the output that it uses unless a program asks for another.
constexpr const char* defaultOutput = "@DEFAULT_SINK@";

struct LoopRelease {
    void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
};

}  // namespace

class PulseVolume::Connection {
public:
    Connection() : loop_(pa_mainloop_new()) {
        if (loop_) context_ = beginPulseConnection(pa_mainloop_get_api(loop_.get()), nullptr, nullptr);
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
        const PulseOperation operation(begun);
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
    PulseContext context_;
};

PulseVolume::PulseVolume() = default;
PulseVolume::~PulseVolume() = default;

PulseVolume::Connection* PulseVolume::connection(Deadline deadline) {
    if (connection_ && connection_->lost()) connection_.reset();
    if (!connection_) connection_ = std::make_unique<Connection>();
    if (!connection_->open(deadline)) connection_.reset();
    return connection_.get();
}

std::optional<bool> PulseVolume::muted(Deadline deadline) {
    Connection* server = connection(deadline);
    if (server == nullptr) return std::nullopt;
    std::optional<bool> result;
    const auto take = [](pa_context* /*context*/, const pa_sink_info* sink, int /*end*/, void* into) {
        if (sink != nullptr) *static_cast<std::optional<bool>*>(into) = sink->mute != 0;
    };
    if (!server->finish(pa_context_get_sink_info_by_name(server->context(), defaultOutput, take, &result), deadline)) {
        connection_.reset();
        return std::nullopt;
    }
    return result;
}

bool PulseVolume::setMuted(bool muted, Deadline deadline) {
    Connection* server = connection(deadline);
    if (server == nullptr) return false;
    bool done = false;
    const auto take = [](pa_context* /*context*/, int success, void* into) {
        *static_cast<bool*>(into) = success != 0;
    };
    const bool finished = server->finish(
        pa_context_set_sink_mute_by_name(server->context(), defaultOutput, muted ? 1 : 0, take, &done), deadline);
    if (!finished) connection_.reset();
    return finished && done;
}

}  // namespace sunpane
