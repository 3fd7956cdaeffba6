#include "views/ThemeStore.h"

#include <gtest/gtest.h>

#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"

namespace sunpane {
namespace {

using Value = UserDefaults::Value;

TEST(ThemeColorTest, EveryColourSurvivesTheWayThroughComponents) {
    for (std::int64_t level = 0; level < 256; ++level) {
        const std::int64_t hex = level << 16 | (255 - level) << 8 | (level ^ 0x55);
        EXPECT_EQ(ThemeColor::fromHex(hex).hexValue(), hex);
    }
    EXPECT_EQ(ThemeColor::fromHex(0x123456), (ThemeColor{18 / 255.0, 52 / 255.0, 86 / 255.0, 1}));
    EXPECT_EQ((ThemeColor{0.9999, 0.5, 1.5}).hexValue(), 0xFE7FFF);
}

struct ThemeStoreTest : ::testing::Test {
    testing::SimulatedPlatform platform;
    testing::SimulatedUserDefaults defaults;
    ThemeStore store{defaults, platform.runLoop};
};

TEST_F(ThemeStoreTest, StartsFromWhatTheSettingsHold) {
    struct Case {
        const char* name;
        std::map<std::string, Value, std::less<>> settings;
        NotchTheme theme;
        double translucency;
        double baseOpacity;
    };
    const Case cases[] = {
        {"nothing", {}, NotchTheme::glass, 0.9, 0.1},
        {"a dark tint", {{"glassTint", 0.7}}, NotchTheme::dark, 0.8, 1},
        {"a tint at the limit", {{"glassTint", 0.6}}, NotchTheme::glass, 0.9, 0.1},
        {"a whole number as tint", {{"glassTint", std::int64_t{1}}}, NotchTheme::dark, 0.8, 1},
        {"an unknown theme", {{"notchTheme", "fog"}, {"glassTint", 1.0}}, NotchTheme::dark, 0.8, 1},
        {"a theme beside an old tint", {{"notchTheme", "sun"}, {"glassTint", 1.0}}, NotchTheme::sun, 0.8, 0.2},
        {"a theme that is a number", {{"notchTheme", std::int64_t{3}}}, NotchTheme::glass, 0.9, 0.1},
        {"its own translucency",
         {{"notchTheme", "haze"}, {"translucency.haze", 0.4}, {"translucency.glass", 0.3}},
         NotchTheme::haze,
         0.4,
         0.6},
        {"a mistyped translucency", {{"translucency.glass", "clear"}}, NotchTheme::glass, 0.9, 0.1},
        {"one beyond the range", {{"translucency.glass", 7.0}}, NotchTheme::glass, 7, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        defaults.values = c.settings;
        const ThemeStore next(defaults, platform.runLoop);
        EXPECT_EQ(next.theme(), c.theme);
        EXPECT_EQ(next.translucency(), c.translucency);
        EXPECT_NEAR(next.baseOpacity(), c.baseOpacity, 1e-12);
        EXPECT_EQ(defaults.values, c.settings) << "starting writes nothing";
    }
}

TEST_F(ThemeStoreTest, KeepsSomeBlackUnderAWash) {
    struct Case {
        NotchTheme theme;
        double translucency;
        double baseOpacity;
    };
    for (const Case& c : {Case{NotchTheme::haze, 0.4, 0.6}, Case{NotchTheme::haze, 0.9, 0.1},
                          Case{NotchTheme::dusk, 0.95, 0.05}, Case{NotchTheme::custom, 1, 0},
                          Case{NotchTheme::glass, 1, 0}, Case{NotchTheme::glass, 0, 1}, Case{NotchTheme::dark, 1, 1}}) {
        store.setTheme(c.theme);
        store.setTranslucency(c.translucency);
        EXPECT_NEAR(store.baseOpacity(), c.baseOpacity, 1e-12) << store.themeName() << " at " << c.translucency;
    }
}

TEST_F(ThemeStoreTest, EachThemeKeepsItsTranslucency) {
    store.setTranslucency(0.35);
    store.setTheme(NotchTheme::dusk);
    EXPECT_EQ(store.translucency(), 0.8);
    EXPECT_EQ(defaults.values["translucency.dusk"], Value(0.8)) << "the default is written when first used";
    store.setTranslucency(0.5);
    store.setTheme(NotchTheme::glass);
    EXPECT_EQ(store.translucency(), 0.35);
    EXPECT_EQ(store.storedTranslucency(NotchTheme::dusk), 0.5);

    const ThemeStore next(defaults, platform.runLoop);
    EXPECT_EQ(next.theme(), NotchTheme::glass);
    EXPECT_EQ(next.translucency(), 0.35);
}

TEST_F(ThemeStoreTest, TheUsersColoursMakeTheCustomWash) {
    defaults.values = {{"customStrength", "strong"}, {"customBottomHex", 5.5}};
    store.reload();
    EXPECT_EQ(store.customBottomHex(), ThemeStore::defaultBottomHex);
    EXPECT_EQ(store.customStrength(), 0.55);
    EXPECT_EQ(store.washStops(), std::nullopt);
    store.setCustomTopHex(0x123456);
    store.setCustomStrength(0.8);
    EXPECT_EQ(store.washStops(), std::nullopt) << "glass has no wash";
    EXPECT_EQ(store.washStrength(), 0.55) << "a built-in theme's is fixed";
    store.setTheme(NotchTheme::custom);
    EXPECT_EQ(store.washStops(),
              (GradientStops{{{18 / 255.0, 52 / 255.0, 86 / 255.0, 1}, 0}, {ThemeColor::fromHex(0x170F16), 1}}));
    EXPECT_EQ(store.washStrength(), 0.8);

    const ThemeStore next(defaults, platform.runLoop);
    EXPECT_EQ(next.customTopHex(), 0x123456);
    EXPECT_EQ(next.washStrength(), 0.8);
    EXPECT_EQ(next.theme(), NotchTheme::custom);
}

TEST_F(ThemeStoreTest, AnnouncesBeforeItChangesAndKeepsAThemeAtOnce) {
    std::vector<std::string> seen;
    const auto changes = store.onWillChange([&] { seen.push_back(store.themeName()); });
    store.setTheme(NotchTheme::sun);
    EXPECT_EQ(defaults.values["notchTheme"], Value("sun"));
    EXPECT_EQ(seen, (std::vector<std::string>{"glass", "sun"})) << "once for the theme, once for its translucency";
    store.setTranslucency(0.2);
    store.setCustomTopHex(1);
    store.setCustomBottomHex(2);
    store.setCustomStrength(0.3);
    EXPECT_EQ(seen.size(), 6);
}

TEST_F(ThemeStoreTest, KeepsWhatIsDraggedOnceItRests) {
    {
        ThemeStore dragged(defaults, platform.runLoop);
        for (int step = 0; step < 50; ++step) {
            dragged.setTranslucency(0.01 * step);
            EXPECT_EQ(dragged.storedTranslucency(NotchTheme::glass), dragged.translucency());
            platform.time.advance(0.05);
        }
        EXPECT_EQ(defaults.writes, 0);
        platform.time.advance(ThemeStore::writeDelay);
        EXPECT_EQ(defaults.writes, 1);
        EXPECT_EQ(defaults.values["translucency.glass"], Value(0.49));

        dragged.setTranslucency(0.6);
        dragged.setTheme(NotchTheme::glass);
        EXPECT_EQ(dragged.translucency(), 0.6) << "chosen anew before it was written";

        dragged.setCustomStrength(0.4);
        dragged.setCustomTopHex(7);
        defaults.values["customStrength"] = 0.9;  // another program
        defaults.values["customBottomHex"] = std::int64_t{8};
    }
    EXPECT_EQ(defaults.values["customStrength"], Value(0.9)) << "it came later";
    EXPECT_EQ(defaults.values["customBottomHex"], Value(std::int64_t{8}));
    EXPECT_EQ(defaults.values["customTopHex"], Value(std::int64_t{7})) << "written at the end";
}

TEST_F(ThemeStoreTest, ShowsWhatTheSettingsHoldAfterAnotherProgramChangedThemDuringADrag) {
    store.setTranslucency(0.6);
    store.setCustomStrength(0.4);
    defaults.values["customStrength"] = 0.9;  // another program
    defaults.values["notchTheme"] = "custom";
    defaults.values["translucency.custom"] = 0.3;
    store.reload();
    EXPECT_EQ(store.customStrength(), 0.9);
    EXPECT_EQ(store.theme(), NotchTheme::custom);
    EXPECT_EQ(store.translucency(), 0.3);
    EXPECT_EQ(store.storedTranslucency(NotchTheme::glass), 0.6);
    const auto settled = defaults.values;
    EXPECT_EQ(defaults.values["translucency.glass"], Value(0.6));
    platform.time.advance(1);
    EXPECT_EQ(defaults.values, settled) << "nothing comes later that does not show";
}

}  // namespace
}  // namespace sunpane
