#pragma once

#include <cstdint>
#include <functional>

#include "base/RunLoop.h"
#include "platform/EventMonitors.h"

namespace sunpane {

/// What is known of a device that scrolls.
enum class ScrollDevice {
    /// It only clicks, or turns without being a gesture: a wheel, however fine it turns.
    wheel,
    /// Fingers scroll on it, and it tells when they leave.
    touchpad,
    /// Its driver says nothing about it.
    unknown,
};

/// One movement of a device's scroll axes, as the driver told it. A plain value.
struct ScrollStep {
    std::uint32_t deviceId = 0;
    ScrollDevice device = ScrollDevice::unknown;
    /// In notches of a wheel; positive moves the content to the right, or down. Both 0 when the fingers have left.
    double x = 0;
    double y = 0;
    /// The desktop's time of the event (ms).
    std::uint32_t time = 0;
};

/// Makes gestures with a beginning and an end out of the scroll steps of drivers, which know only movements: a gesture
/// begins with the first step, and ends when the driver tells that the fingers have left, or with a pause.
///
/// Wheels make no gestures. Where the driver does not say what the device is, a first step of whole notches is a
/// wheel's. Fingers that coast on are not told apart: no driver does, so there is no momentum.
///
/// Owned by the event monitors; main thread only.
class ScrollGestures {
public:
    /// A notch moves the content by this much (points).
    static constexpr double pointsPerNotch = 15;
    /// Without a word from the driver a gesture has ended after this pause.
    static constexpr Seconds pause = 0.2;
    /// Where the driver tells when the fingers leave, they may rest for this long; longer, and the word was lost.
    static constexpr Seconds longestRest = 4;

    using Handler = std::function<bool(const ScrollEvent&)>;

    /// `handler` takes each event and returns whether it swallowed it.
    ScrollGestures(RunLoop& runLoop, Handler handler);

    void take(const ScrollStep& step);

    /// Whether the scrolling that the desktop told at `time` was swallowed, and must not reach a window.
    bool swallowed(std::uint64_t time) const;

private:
    bool opensGesture(const ScrollStep& step) const;
    void end();
    bool tell(ScrollPhase phase, const ScrollStep& step);

    RunLoop& runLoop_;
    Handler handler_;
    bool going_ = false;
    std::uint32_t deviceId_ = 0;  // of the gesture that goes on
    // The first and the last step of the last gesture that were swallowed; the first is later while none was.
    std::uint64_t swallowedFrom_ = 1;
    std::uint64_t swallowedTo_ = 0;
    Subscription ending_;
};

}  // namespace sunpane
