#pragma once

#include "views/ThemeStore.h"

namespace sunpane::panel_paint {

/// The black base and the wash above it as one gradient with opacities, which is cheaper to paint than two.
///
/// `openness` runs from 0, where the panel is the black notch, to 1, where it has the theme's look.
GradientStops coating(const ThemeStore& theme, double openness);

/// Whether nothing but black is to be seen.
bool isBlack(const GradientStops& coating);

/// How strongly text and cards must be underlaid with black so that they stay readable, from 0 to 1. `backdrop` is the
/// brightest that shows through the panel, as a grey from 0 to 1.
///
/// In steps, so that a backdrop that moves does not change it all the time.
double scrimOpacity(const ThemeStore& theme, double backdrop);

}  // namespace sunpane::panel_paint
