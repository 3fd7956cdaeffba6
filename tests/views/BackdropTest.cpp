#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"
#include "views/BackdropFilters.h"
#include "views/PanelBackdrop.h"
#include "views/PanelPaint.h"

namespace sunpane {
namespace {

using testing::SimulatedPlatform;
using testing::SimulatedUserDefaults;

ScreenImage filled(int width, int height, std::uint32_t pixel) {
    return {width, height, std::vector<std::uint32_t>(static_cast<std::size_t>(width) * height, pixel)};
}

std::uint32_t& at(ScreenImage& image, int x, int y) {
    return image.pixels[static_cast<std::size_t>(y) * image.width + x];
}

TEST(BackdropFiltersTest, TheBlurFollowsTheTranslucency) {
    for (const auto& [translucency, radius] :
         {std::pair{0.0, 28.0}, {0.5, 28.0}, {0.6, 28.0}, {0.7, 25.0}, {0.8, 22.0}, {1.0, 16.0}, {5.0, 16.0}})
        EXPECT_NEAR(backdrop::blurRadius(translucency), radius, 1e-9) << translucency;
}

TEST(BackdropFiltersTest, SaturationLeavesGreysAndMovesColoursApart) {
    ScreenImage image{3, 1, {0x808080, 0xA06060, 0xFF2000}};
    backdrop::saturate(image, 1.7);
    EXPECT_EQ(image.pixels[0], 0x808080);
    // Grey 109: red 109 + 1.7 * 51, green and blue 109 - 1.7 * 13.
    const std::uint32_t red = image.pixels[1] >> 16;
    const std::uint32_t green = (image.pixels[1] >> 8) & 0xFF;
    EXPECT_NEAR(red, 195, 2);
    EXPECT_NEAR(green, 87, 2);
    EXPECT_EQ(image.pixels[2] >> 16, 0xFF) << "cut off, not wrapped round";
    EXPECT_EQ(image.pixels[2] & 0xFF, 0);
}

TEST(BackdropFiltersTest, BlurSpreadsAPointAsABellCurveAndKeepsPlainAreas) {
    constexpr double deviation = 6;
    ScreenImage plain = filled(40, 30, 0x336699);
    backdrop::blur(plain, deviation);
    EXPECT_EQ(plain, filled(40, 30, 0x336699)) << "edges are not darkened";

    // A white bar one pixel wide would vanish in rounding; half the image does not.
    ScreenImage step = filled(120, 8, 0);
    for (int y = 0; y < step.height; ++y) {
        for (int x = 60; x < 120; ++x)
            at(step, x, y) = 0xFFFFFF;
    }
    backdrop::blur(step, deviation);
    ASSERT_EQ(step.width, 120);
    for (int x = 30; x < 90; ++x) {
        const double expected = 255 * 0.5 * std::erfc(-(x + 0.5 - 60) / (deviation * std::sqrt(2.0)));
        EXPECT_NEAR(at(step, x, 4) & 0xFF, expected, 6) << x;
    }
    ScreenImage sharp = step;
    backdrop::blur(sharp, 0);
    EXPECT_EQ(sharp, step);
    ScreenImage none;
    backdrop::blur(none, deviation);
}

TEST(BackdropFiltersTest, TheNotchIsFilledFromItsSides) {
    ScreenImage image = filled(12, 4, 0);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 12; ++x) {
            if (y >= 2 || x < 4 || x >= 8) at(image, x, y) = x < 4 ? 0x00C800 : 0x640000;
        }
    }
    backdrop::coverTop(image, 4, 8, 2);
    for (int x = 4; x < 8; ++x) {
        EXPECT_GT(at(image, x, 1), 0U) << "no black is left";
        EXPECT_LT(at(image, x, 1) >> 8 & 0xFF, 0xC8U);
    }
    EXPECT_EQ(at(image, 5, 2), 0x640000U) << "below it nothing changes";
    // As wide as the image: nothing to fill from, and nothing out of bounds.
    backdrop::coverTop(image, -5, 100, 100);
}

TEST(BackdropFiltersTest, EnlargingKeepsCornersAndRunsSmoothly) {
    const ScreenImage small{2, 2, {0x000000, 0x0000FF, 0x00FF00, 0x00FFFF}};
    const ScreenImage large = backdrop::enlarged(small, 10, 7);
    ASSERT_EQ(large.pixels.size(), 70U);
    EXPECT_EQ(large.pixels.front() & 0xFFFFFF, 0x000000);
    EXPECT_EQ(large.pixels.back() & 0xFFFFFF, 0x00FFFF);
    for (int x = 1; x < 10; ++x)
        EXPECT_GE(large.pixels[static_cast<std::size_t>(x)] & 0xFF,
                  large.pixels[static_cast<std::size_t>(x) - 1] & 0xFF);
    EXPECT_EQ(backdrop::enlarged(small, 2, 2).pixels[2] & 0xFFFFFF, 0x00FF00) << "the same size changes nothing";
}

TEST(BackdropFiltersTest, TheGreyOfAColourHasItsLuminance) {
    EXPECT_NEAR(backdrop::grayOf({1, 1, 1}), 1, 1e-3);
    EXPECT_NEAR(backdrop::grayOf({0.5, 0.5, 0.5}), 0.5, 1e-3);
    EXPECT_NEAR(backdrop::grayOf({0, 1, 0}), 0.863, 1e-3);
    EXPECT_NEAR(backdrop::brightestGray({2, 1, {0x00FF00, 0xFF0000}}), 0.863, 1e-3);
    EXPECT_EQ(backdrop::brightestGray({}), 0);
}

/// A screen of one colour, or of whatever the test paints.
class SimulatedScreen : public ScreenBackdrop {
public:
    bool isBlurredByDesktop() const override { return blurs; }
    bool isLive() const override { return live; }
    std::optional<Capture> capture(std::uint64_t window, int reduction) override {
        ++captures;
        lastWindow = window;
        if (!visible) return std::nullopt;
        return Capture{filled(78 * 4 / reduction, 74 * 4 / reduction, pixel), 312, 296, !live};
    }

    bool blurs = false;
    bool live = false;
    bool visible = true;
    std::uint32_t pixel = 0x808080;
    int captures = 0;
    std::uint64_t lastWindow = 0;
};

class PanelBackdropTest : public ::testing::Test {
protected:
    void show() { backdrop.show({7, {312, 296}, {100, 30}}, 0.9); }
    std::uint32_t shownPixel() const { return backdrop.image()->pixels[1000] & 0xFFFFFF; }

    SimulatedPlatform platform;
    SimulatedScreen screen;
    int generation = 0;
    int changes = 0;
    PanelBackdrop backdrop{{screen, platform.runLoop, platform.queues, [this] { return generation; }},
                           [this] { ++changes; }};
};

TEST_F(PanelBackdropTest, IsThereWhileThePanelIsOpenOnly) {
    EXPECT_EQ(platform.time.pendingCount(), 0U);
    show();
    EXPECT_EQ(backdrop.image(), nullptr) << "made in the background";
    EXPECT_EQ(backdrop.brightest(), 1);
    platform.time.runPending();
    ASSERT_NE(backdrop.image(), nullptr);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(screen.lastWindow, 7U);
    EXPECT_EQ(backdrop.image()->width, 312);
    EXPECT_EQ(backdrop.image()->height, 296);
    EXPECT_EQ(shownPixel(), 0x808080U);
    EXPECT_NEAR(backdrop.brightest(), 0.5, 0.01);
    backdrop.release();
    EXPECT_EQ(backdrop.image(), nullptr);
    EXPECT_EQ(platform.time.pendingCount(), 0U);
}

TEST_F(PanelBackdropTest, APictureOfAFoldedPanelComesTooLate) {
    show();
    backdrop.release();
    platform.time.runPending();
    EXPECT_EQ(backdrop.image(), nullptr);
    EXPECT_EQ(changes, 0);
}

TEST_F(PanelBackdropTest, FollowsALiveScreenAndRestsWhileNothingMoves) {
    screen.live = true;
    show();
    platform.time.advance(0.5);
    EXPECT_EQ(screen.captures, 1) << "none while the panel unfolds";
    platform.time.advance(1);
    EXPECT_GE(screen.captures, 4);
    EXPECT_EQ(changes, 1) << "the same picture is not made twice";
    screen.pixel = 0x202020;
    platform.time.advance(2 * PanelBackdrop::refreshInterval);
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(shownPixel(), 0x202020U);
    backdrop.release();
    const int captures = screen.captures;
    platform.time.advance(1);
    EXPECT_EQ(screen.captures, captures);
}

TEST_F(PanelBackdropTest, AScreenThatShowsThePanelItselfIsTakenOnce) {
    show();
    platform.time.advance(1);
    EXPECT_EQ(screen.captures, 1);
    screen.pixel = 0;  // the open panel's own black
    ++generation;
    backdrop.update(0.95);
    platform.time.runPending();
    EXPECT_EQ(shownPixel(), 0x808080U);
}

TEST_F(PanelBackdropTest, AnOpenPanelIsInNoPicture) {
    const PanelBackdrop::Window open{7, {312, 296}, {100, 30}, false};
    backdrop.show(open, 0.9);
    platform.time.advance(1);
    EXPECT_EQ(backdrop.image(), nullptr) << "the panel cannot be taken out of it";
    screen.live = true;
    backdrop.show(open, 0.9);
    platform.time.runPending();
    EXPECT_NE(backdrop.image(), nullptr);
}

TEST_F(PanelBackdropTest, ANewSpaceMakesItAnew) {
    screen.live = true;
    show();
    platform.time.runPending();
    screen.pixel = 0x404040;
    backdrop.update(0.9);
    platform.time.runPending();
    EXPECT_EQ(shownPixel(), 0x808080U) << "the same space: the next look comes in its time";
    ++generation;
    backdrop.update(0.9);
    platform.time.runPending();
    EXPECT_EQ(shownPixel(), 0x404040U);
}

TEST_F(PanelBackdropTest, BlursAnewWhenTheTranslucencyAsksForAnotherBlurOnly) {
    show();
    platform.time.runPending();
    backdrop.update(0.95);
    backdrop.update(1);
    platform.time.runPending();
    EXPECT_EQ(changes, 3) << "the first, and the last of those that came meanwhile";
    backdrop.update(0.6);
    platform.time.runPending();
    backdrop.update(0.3);
    platform.time.runPending();
    EXPECT_EQ(changes, 4) << "below 0.6 the blur stays";
}

TEST_F(PanelBackdropTest, WithoutAPictureThereIsNone) {
    screen.visible = false;
    show();
    platform.time.runPending();
    backdrop.update(1);
    EXPECT_EQ(backdrop.image(), nullptr);
    EXPECT_FALSE(backdrop.isBlurredByDesktop());

    screen.visible = true;
    screen.blurs = true;
    const int captures = screen.captures;
    show();
    ++generation;
    backdrop.update(0.5);
    platform.time.advance(1);
    EXPECT_TRUE(backdrop.isBlurredByDesktop());
    EXPECT_EQ(screen.captures, captures) << "the desktop does it";
    EXPECT_EQ(backdrop.brightest(), 1) << "nobody knows what is there";
}

struct PanelPaintTest : ::testing::Test {
    SimulatedPlatform platform;
    SimulatedUserDefaults defaults;
    ThemeStore theme{defaults, platform.runLoop};
};

// What one layer over another comes to.
double over(double below, double color, double opacity) {
    return below * (1 - opacity) + color * opacity;
}

TEST_F(PanelPaintTest, TheCoatingEqualsTheBaseWithTheWashAboveIt) {
    for (const NotchTheme name : notch_theme::all) {
        for (const double translucency : {0.2, 0.6, 1.0}) {
            theme.setTheme(name);
            theme.setTranslucency(translucency);
            const auto coating = panel_paint::coating(theme, 1);
            const auto wash = theme.washStops();
            for (std::size_t i = 0; i < coating.size(); ++i) {
                const double below = 0.7;
                double expected = over(below, 0, theme.baseOpacity());
                if (wash) expected = over(expected, (*wash)[i].color.red, theme.washStrength());
                EXPECT_NEAR(over(below, coating[i].color.red, coating[i].color.opacity), expected, 1e-9)
                    << theme.themeName() << " at " << translucency;
            }
            EXPECT_TRUE(panel_paint::isBlack(panel_paint::coating(theme, 0))) << "the folded panel is the black notch";
        }
    }
}

TEST_F(PanelPaintTest, AWashThatBeginsBlackIsStillSeen) {
    theme.setTheme(NotchTheme::custom);
    theme.setTranslucency(0);
    theme.setCustomTopHex(0);
    EXPECT_FALSE(panel_paint::isBlack(panel_paint::coating(theme, 1)));
    theme.setCustomBottomHex(0);
    EXPECT_TRUE(panel_paint::isBlack(panel_paint::coating(theme, 1)));
}

TEST_F(PanelPaintTest, TheScrimKeepsEveryBackgroundDarkUnderText) {
    for (const NotchTheme name : notch_theme::all) {
        for (const double translucency : {0.0, 0.5, 1.0}) {
            theme.setTheme(name);
            theme.setTranslucency(translucency);
            for (const double behind : {0.0, 0.3, 1.0}) {
                const double scrim = panel_paint::scrimOpacity(theme, behind);
                EXPECT_GE(scrim, 0);
                EXPECT_LE(scrim, 1);
                for (const GradientStop& stop : panel_paint::coating(theme, 1)) {
                    const ThemeColor& c = stop.color;
                    const double gray =
                        backdrop::grayOf({over(behind, c.red, c.opacity), over(behind, c.green, c.opacity),
                                          over(behind, c.blue, c.opacity)});
                    EXPECT_LE(gray * (1 - scrim), 0.29) << theme.themeName() << " at " << translucency;
                }
            }
        }
    }
    theme.setTheme(NotchTheme::dark);
    EXPECT_EQ(panel_paint::scrimOpacity(theme, 1), 0) << "an opaque panel needs none";
}

}  // namespace
}  // namespace sunpane
