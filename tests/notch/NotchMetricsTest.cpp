#include "notch/NotchMetrics.h"

#include <gtest/gtest.h>

namespace sunpane {
namespace {

Screen screen(Rect frame, double safeTop = 0, std::optional<double> notchWidth = std::nullopt) {
    Screen result{frame, safeTop, {}, {}};
    if (notchWidth) {
        const double side = (frame.width - *notchWidth) / 2;
        result.auxiliaryTopLeft = Rect{frame.x, frame.maxY() - safeTop, side, safeTop};
        result.auxiliaryTopRight = Rect{frame.maxX() - side, frame.maxY() - safeTop, side, safeTop};
    }
    return result;
}

TEST(NotchMetrics, FollowsTheScreen) {
    struct Case {
        Screen screen;
        Size notch;
        double maxCardHeight;
        Rect hotZone;
    };
    const Case cases[] = {
        // No camera housing: a virtual notch at the top centre.
        {screen({0, 0, 1440, 1000}), {200, 32}, 850, {650, 974, 140, 116}},
        {screen({0, 0, 1920, 1200}), {200, 32}, 920, {890, 1174, 140, 116}},
        // A wide one, a narrow one that is widened, one whose width is unknown.
        {screen({0, 0, 1512, 982}, 38, 220), {220, 38}, 834.7, {676, 950, 160, 122}},
        {screen({0, 0, 1512, 982}, 38, 90), {180, 38}, 834.7, {696, 950, 120, 122}},
        {screen({0, 0, 1512, 982}, 10), {200, 10}, 834.7, {686, 972, 140, 100}},
        // A second screen, below and to the left of the first.
        {screen({-1280, -720, 1280, 720}), {200, 32}, 612, {-710, -26, 140, 116}},
    };
    for (const auto& c : cases) {
        const NotchMetrics metrics(c.screen);
        EXPECT_EQ(metrics.notchSize, c.notch);
        EXPECT_DOUBLE_EQ(metrics.maxCardHeight, c.maxCardHeight);
        EXPECT_EQ(metrics.hotZone(), c.hotZone);
        EXPECT_EQ(metrics.cardWidth, 720);
        EXPECT_DOUBLE_EQ(metrics.panelSize.height, c.notch.height + c.maxCardHeight + 24);
        const Rect panel = metrics.panelFrame();
        EXPECT_DOUBLE_EQ(panel.maxY(), c.screen.frame.maxY());
        EXPECT_DOUBLE_EQ(panel.midX(), c.screen.frame.midX());
        EXPECT_EQ(panel.width, 780);
    }
}

TEST(NotchMetrics, KeepsThePanelOnANarrowScreen) {
    struct Case {
        double screen, panel, card;
    };
    const Case cases[] = {{780, 780, 720}, {740, 740, 720}, {640, 640, 620}, {480, 480, 460}};
    for (const auto& c : cases) {
        const NotchMetrics metrics(screen({100, 0, c.screen, 400}));
        EXPECT_EQ(metrics.panelFrame().x, 100) << c.screen;
        EXPECT_EQ(metrics.panelFrame().width, c.panel) << c.screen;
        EXPECT_EQ(metrics.cardWidth, c.card) << c.screen;
    }
}

}  // namespace
}  // namespace sunpane
