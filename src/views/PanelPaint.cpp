#include "views/PanelPaint.h"

#include <algorithm>
#include <cmath>

#include "views/BackdropFilters.h"

namespace sunpane::panel_paint {
namespace {

// A white layer of 6 % and one of 4 % above it, for sections and cards, lighten this to a grey of 0.34. On that, the
// panel's text of 92 % white has a contrast of 6.5 to 1 and its captions, of 55 %, 3.5 to 1.
constexpr double brightestUnderText = 0.27;
constexpr double scrimStep = 0.05;

}  // namespace

GradientStops coating(const ThemeStore& theme, double openness) {
    const double base = 1 - (1 - theme.baseOpacity()) * openness;
    const auto wash = theme.washStops();
    if (!wash) return {{{0, 0, 0, base}, 0}, {{0, 0, 0, base}, 1}};
    const double strength = std::clamp(theme.washStrength(), 0.0, 1.0) * openness;
    const double opacity = 1 - (1 - base) * (1 - strength);
    GradientStops stops = *wash;
    for (GradientStop& stop : stops) {
        // The wash alone has the colour; the black under it only takes from what shows through.
        const double part = opacity > 0 ? strength / opacity : 0;
        stop.color = {stop.color.red * part, stop.color.green * part, stop.color.blue * part, opacity};
    }
    return stops;
}

bool isBlack(const GradientStops& coating) {
    return std::all_of(coating.begin(), coating.end(),
                       [](const GradientStop& stop) { return stop.color == ThemeColor{}; });
}

double scrimOpacity(const ThemeStore& theme, double backdrop) {
    double brightest = backdrop * (1 - theme.baseOpacity());
    if (const auto wash = theme.washStops()) {
        double lightest = 0;
        for (const GradientStop& stop : *wash)
            lightest = std::max(lightest, backdrop::grayOf(stop.color));
        const double strength = std::clamp(theme.washStrength(), 0.0, 1.0);
        brightest = brightest * (1 - strength) + lightest * strength;
    }
    if (brightest <= brightestUnderText) return 0;
    return std::min(1.0, std::ceil((1 - brightestUnderText / brightest) / scrimStep) * scrimStep);
}

}  // namespace sunpane::panel_paint
