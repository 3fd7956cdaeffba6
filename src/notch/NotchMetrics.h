#pragma once

#include "base/Geometry.h"
#include "platform/Screens.h"

namespace sunpane {

/// The geometry of the notch and of the panel on one screen, in screen points.
struct NotchMetrics {
    explicit NotchMetrics(const Screen& screen);

    Rect screenFrame;
    Size notchSize;
    /// The panel's window; the card inside it folds open within this size. Both are narrower on a screen that has not
    /// their room, as one with large letters.
    Size panelSize;
    double cardWidth;
    double maxCardHeight;

    /// Where the panel's window stands: hanging from the screen's top edge, centred on the notch.
    Rect panelFrame() const;

    /// The band around the notch that unfolds the panel. It reaches above the screen's top edge, where a pointer that
    /// is thrown at the edge may be on a screen above.
    Rect hotZone() const;

    /// Whether the pointer is so near the notch that the user may be about to use the panel.
    bool isNearNotch(Point pointer) const;
};

}  // namespace sunpane
