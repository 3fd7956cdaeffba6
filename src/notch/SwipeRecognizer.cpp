#include "notch/SwipeRecognizer.h"

#include <cmath>
#include <utility>

namespace sunpane {

SwipeRecognizer::Step SwipeRecognizer::take(const ScrollEvent& event) {
    if (event.momentumPhase != ScrollPhase::none) return active_ || coasting_ ? Step::consumed : Step::passed;
    switch (event.phase) {
        case ScrollPhase::began:
            *this = SwipeRecognizer();
            return Step::consumed;
        case ScrollPhase::changed:
            return change(event);
        case ScrollPhase::ended:
        case ScrollPhase::cancelled:
            return end();
        case ScrollPhase::none:
            break;
    }
    return Step::consumed;
}

SwipeRecognizer::Step SwipeRecognizer::change(const ScrollEvent& event) {
    if (rejected_) return Step::passed;
    if (active_) {
        offset_ += event.deltaX;
        return Step::consumed;
    }
    pendX_ += event.deltaX;
    pendY_ += event.deltaY;
    const double ax = std::abs(pendX_);
    const double ay = std::abs(pendY_);
    if (ax > ay + swipeLead && ax > swipeStart) {
        active_ = true;
        offset_ = pendX_;
    } else if (ay > ax + scrollLead) {
        rejected_ = true;
        return Step::passed;
    }
    return Step::consumed;
}

SwipeRecognizer::Step SwipeRecognizer::end() {
    rejected_ = false;
    coasting_ = std::exchange(active_, false);
    return coasting_ ? Step::finished : Step::consumed;
}

void SwipeRecognizer::release() {
    active_ = false;
    offset_ = 0;
}

}  // namespace sunpane
