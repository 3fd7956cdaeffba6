#include "linux/desktop/ScrollGestures.h"

#include <cmath>
#include <utility>

namespace sunpane {
namespace {

// Axis values come as fixed-point numbers.
constexpr double precision = 1e-4;

bool isWhole(double notches) {
    return std::abs(notches - std::round(notches)) < precision;
}

bool isClosing(const ScrollStep& step) {
    return std::abs(step.x) < precision && std::abs(step.y) < precision;
}

}  // namespace

ScrollGestures::ScrollGestures(RunLoop& runLoop, Handler handler) : runLoop_(runLoop), handler_(std::move(handler)) {}

void ScrollGestures::take(const ScrollStep& step) {
    if (going_ && step.deviceId != deviceId_) {
        // Whoever turns a wheel while fingers rest on the touchpad goes on with the gesture afterwards.
        if (!opensGesture(step)) return;
        end();
    }
    if (isClosing(step)) return end();
    if (!going_) {
        if (!opensGesture(step)) return;
        going_ = true;
        deviceId_ = step.deviceId;
        swallowedFrom_ = step.time;
        swallowedTo_ = 0;
        tell(ScrollPhase::began, {});
    }
    if (tell(ScrollPhase::changed, step)) swallowedTo_ = step.time;
    ending_ = runLoop_.after(step.device == ScrollDevice::touchpad ? longestRest : pause, [this] { end(); });
}

bool ScrollGestures::opensGesture(const ScrollStep& step) const {
    if (step.device == ScrollDevice::wheel || isClosing(step)) return false;
    return step.device == ScrollDevice::touchpad || !isWhole(step.x) || !isWhole(step.y);
}

void ScrollGestures::end() {
    ending_.cancel();
    if (std::exchange(going_, false)) tell(ScrollPhase::ended, {});
}

bool ScrollGestures::tell(ScrollPhase phase, const ScrollStep& step) {
    return handler_({phase, ScrollPhase::none, step.x * pointsPerNotch, step.y * pointsPerNotch});
}

bool ScrollGestures::swallowed(std::uint64_t time) const {
    return swallowedFrom_ <= time && time <= swallowedTo_;
}

}  // namespace sunpane
