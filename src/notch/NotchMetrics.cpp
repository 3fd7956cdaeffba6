#include "notch/NotchMetrics.h"

#include <algorithm>
#include <cmath>

namespace sunpane {
namespace {

constexpr Size virtualNotch{200, 32};
constexpr double narrowestNotch = 180;
constexpr double panelWidth = 780;
constexpr double widestCard = 720;
constexpr double flares = 20;       // of the outline, beside a card that is as wide as the screen allows
constexpr double panelMargin = 24;  // below the tallest card
constexpr double tallestCard = 920;
constexpr double tallestCardShare = 0.85;  // of the screen's height

double notchWidth(const Screen& screen) {
    if (!screen.auxiliaryTopLeft || !screen.auxiliaryTopRight) return virtualNotch.width;
    return std::max(screen.auxiliaryTopRight->minX() - screen.auxiliaryTopLeft->maxX(), narrowestNotch);
}

}  // namespace

NotchMetrics::NotchMetrics(const Screen& screen)
    : screenFrame(screen.frame),
      notchSize{notchWidth(screen), screen.safeAreaTop > 0 ? screen.safeAreaTop : virtualNotch.height},
      panelSize{},
      cardWidth(std::max(notchSize.width, std::min(widestCard, screen.frame.width - flares))),
      maxCardHeight(std::min(tallestCardShare * screen.frame.height, tallestCard)) {
    panelSize = {std::min(panelWidth, std::max(screen.frame.width, cardWidth)),
                 notchSize.height + maxCardHeight + panelMargin};
}

Rect NotchMetrics::panelFrame() const {
    return {screenFrame.midX() - panelSize.width / 2, screenFrame.maxY() - panelSize.height, panelSize.width,
            panelSize.height};
}

Rect NotchMetrics::hotZone() const {
    constexpr double reachAbove = 90;
    const double width = std::max(notchSize.width - 60, 60.0);
    const double height = std::max(notchSize.height - 6, 10.0);
    return {screenFrame.midX() - width / 2, screenFrame.maxY() - height, width, height + reachAbove};
}

bool NotchMetrics::isNearNotch(Point pointer) const {
    constexpr double below = 120;
    constexpr double beside = 400;
    return pointer.y > screenFrame.maxY() - below && std::abs(pointer.x - screenFrame.midX()) < beside;
}

}  // namespace sunpane
