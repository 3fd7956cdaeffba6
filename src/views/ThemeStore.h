#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/Observable.h"
#include "base/RunLoop.h"
#include "base/Subscription.h"
#include "platform/UserDefaults.h"
#include "views/NotchTheme.h"

namespace sunpane {

/// What the user chose for the panel's background, and the numbers that it is painted with: black at `baseOpacity`
/// over the blurred screen, then the wash at `washStrength`.
///
/// One for the process, which the start-up code owns; main thread only. A change announces itself and takes effect. A
/// theme is kept in the settings at once; what is dragged, a moment after the last step and at the end, unless another
/// program has set the same meanwhile.
class ThemeStore : public Observable {
public:
    /// Where the settings keep the theme, by its name.
    static constexpr const char* themeKey = "notchTheme";
    static constexpr std::int64_t defaultTopHex = 0xA7A6CE;
    static constexpr std::int64_t defaultBottomHex = 0x170F16;
    static constexpr double defaultStrength = 0.55;
    /// Writing waits for the disk, which a slider under the pointer must not do at every step.
    static constexpr Seconds writeDelay = 0.3;

    /// Both outlive the store.
    ThemeStore(UserDefaults& defaults, RunLoop& runLoop);
    ~ThemeStore();

    /// The first store that is alive. There must be one.
    static ThemeStore& shared();

    NotchTheme theme() const { return theme_; }
    /// Changes over to the translucency that is remembered for the new theme.
    void setTheme(NotchTheme theme);
    std::string themeName() const { return std::string(notch_theme::rawValue(theme_)); }

    /// From 0, solid, to 1, clear. Each theme has its own.
    double translucency() const { return translucency_; }
    void setTranslucency(double translucency);
    /// What is remembered for a theme, whether it is the current one or not.
    double storedTranslucency(NotchTheme theme) const;

    /// The colours of the custom theme, 0xRRGGBB, and how strongly they cover what is behind.
    std::int64_t customTopHex() const { return customTopHex_; }
    void setCustomTopHex(std::int64_t hex);
    std::int64_t customBottomHex() const { return customBottomHex_; }
    void setCustomBottomHex(std::int64_t hex);
    double customStrength() const { return customStrength_; }
    void setCustomStrength(double strength);

    /// Takes up what another program changed in the settings; what waits to be written here is written first.
    void reload();

    /// From 0 to 1.
    double baseOpacity() const;
    /// Nothing for a theme without a wash.
    std::optional<GradientStops> washStops() const;
    double washStrength() const;
    /// What a theme's swatch is filled with.
    GradientStops swatchStops(NotchTheme theme) const;

private:
    template <class T>
    void change(T& field, T value, std::string_view key);
    void keepSoon(std::string_view key, UserDefaults::Value value);
    void writeNow();
    GradientStops customStops() const;

    struct Unwritten {
        UserDefaults::Value value;
        // What the settings held before it changed here.
        std::optional<UserDefaults::Value> before;
    };

    UserDefaults& defaults_;
    RunLoop& runLoop_;
    // Asked already while what follows is set up.
    std::map<std::string, Unwritten, std::less<>> unwritten_;
    std::int64_t customTopHex_;
    std::int64_t customBottomHex_;
    double customStrength_;
    NotchTheme theme_;
    double translucency_;
    Subscription writing_;
};

}  // namespace sunpane
