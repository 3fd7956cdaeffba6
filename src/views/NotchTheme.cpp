#include "views/NotchTheme.h"

#include <algorithm>

namespace sunpane {
namespace {

struct Names {
    std::string_view rawValue;
    std::string_view label;
};

// In the order of the enumeration.
constexpr std::array<Names, notch_theme::all.size()> names{
    {{"glass", "Frosted"}, {"haze", "Haze"}, {"sun", "Sun"}, {"dusk", "Dusk"}, {"custom", "Custom"}, {"dark", "Dark"}}};

const Names& namesOf(NotchTheme theme) {
    return names.at(static_cast<std::size_t>(theme));
}

}  // namespace

std::int64_t ThemeColor::hexValue() const {
    const auto component = [](double value) { return static_cast<std::int64_t>(std::clamp(value, 0.0, 1.0) * 255); };
    return component(red) << 16 | component(green) << 8 | component(blue);
}

namespace notch_theme {

std::string_view rawValue(NotchTheme theme) {
    return namesOf(theme).rawValue;
}

std::optional<NotchTheme> fromRawValue(std::string_view name) {
    const auto* found = std::find_if(all.begin(), all.end(), [name](NotchTheme t) { return rawValue(t) == name; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

std::string_view label(NotchTheme theme) {
    return namesOf(theme).label;
}

std::optional<GradientStops> stops(NotchTheme theme) {
    constexpr auto hex = ThemeColor::fromHex;
    switch (theme) {
        case NotchTheme::haze:
            return {{{hex(0xA7A6CE), 0},
                     {hex(0xA5AEC6), 0.35},
                     {hex(0xC6D4C2), 0.58},
                     {hex(0x4E4950), 0.82},
                     {hex(0x170F16), 1}}};
        case NotchTheme::sun:
            return {{{hex(0x6B6B70), 0},
                     {hex(0xB9B9BD), 0.3},
                     {hex(0xF6D95E), 0.5},
                     {hex(0xD9D9DC), 0.72},
                     {hex(0x8F8F94), 1}}};
        case NotchTheme::dusk:
            return {{{hex(0xD9C6A8), 0},
                     {hex(0xF2A273), 0.3},
                     {hex(0xE0705F), 0.48},
                     {hex(0x8A5A9E), 0.64},
                     {hex(0x6D7B96), 1}}};
        case NotchTheme::glass:
        case NotchTheme::custom:
        case NotchTheme::dark:
            break;
    }
    return std::nullopt;
}

}  // namespace notch_theme
}  // namespace sunpane
