#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace sunpane {

/// An sRGB colour; each component from 0 to 1.
struct ThemeColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double opacity = 1;

    /// The opaque colour of 0xRRGGBB; higher bits are ignored.
    static constexpr ThemeColor fromHex(std::int64_t hex) {
        constexpr double full = 255;
        return {static_cast<double>((hex >> 16) & 0xFF) / full, static_cast<double>((hex >> 8) & 0xFF) / full,
                static_cast<double>(hex & 0xFF) / full, 1};
    }
    /// As 0xRRGGBB: each component times 255, cut off after the point. The opacity is dropped.
    std::int64_t hexValue() const;

    friend bool operator==(const ThemeColor&, const ThemeColor&) = default;
};

/// A colour of a gradient that runs from 0 at the top to 1 at the bottom.
struct GradientStop {
    ThemeColor color;
    double location = 0;
    friend bool operator==(const GradientStop&, const GradientStop&) = default;
};
using GradientStops = std::vector<GradientStop>;

/// The looks of the panel's background, in the order in which they are offered.
enum class NotchTheme : std::uint8_t { glass, haze, sun, dusk, custom, dark };

namespace notch_theme {

inline constexpr std::array all{NotchTheme::glass, NotchTheme::haze,   NotchTheme::sun,
                                NotchTheme::dusk,  NotchTheme::custom, NotchTheme::dark};

/// The name under which the settings keep the theme.
std::string_view rawValue(NotchTheme theme);
/// Nothing for a name that no theme has.
std::optional<NotchTheme> fromRawValue(std::string_view name);
/// What the user reads under the theme's swatch.
std::string_view label(NotchTheme theme);
/// The wash that the theme brings along; nothing for those that have none or take the user's colours.
std::optional<GradientStops> stops(NotchTheme theme);

}  // namespace notch_theme
}  // namespace sunpane
