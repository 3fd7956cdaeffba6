#pragma once

#include "platform/EventMonitors.h"

namespace sunpane {

/// Tells a sideways swipe with two fingers from scrolling. A plain value; main thread only.
class SwipeRecognizer {
public:
    /// A gesture is a swipe once it has gone sideways more than `swipeStart` points, and more than `swipeLead` further
    /// than up or down. It is scrolling once it has gone up or down more than `scrollLead` further than sideways.
    static constexpr double swipeStart = 4;
    static constexpr double swipeLead = 3;
    static constexpr double scrollLead = 10;

    enum class Step {
        /// Not for a swipe: whoever scrolls may have it.
        passed,
        /// Belongs to a swipe, or may turn out to.
        consumed,
        /// The fingers left; the swipe ended at `offset`.
        finished,
    };

    Step take(const ScrollEvent& event);

    /// How far (points) the swipe that goes on has come, positive to the right; 0 while there is none.
    double offset() const { return offset_; }

    /// Lets go of the swipe. The rest of the gesture starts anew.
    void release();

private:
    Step change(const ScrollEvent& event);
    Step end();

    double offset_ = 0;
    // What the gesture that goes on was found to be: a swipe, scrolling, or neither yet.
    bool active_ = false;
    bool rejected_ = false;
    // Whether the last gesture was a swipe, whose momentum must not scroll the column.
    bool coasting_ = false;
    // How far it went before that was known.
    double pendX_ = 0;
    double pendY_ = 0;
};

}  // namespace sunpane
