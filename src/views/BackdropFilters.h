#pragma once

#include "platform/ScreenBackdrop.h"
#include "views/NotchTheme.h"

namespace sunpane::backdrop {

/// How much more colour the backdrop has than what it is made of.
inline constexpr double saturation = 1.7;

/// The standard deviation of the blur, in points: the clearer the panel, the sharper what is behind it.
double blurRadius(double translucency);

/// Moves each pixel away from the grey of its own brightness, by `amount` times its distance to it.
void saturate(ScreenImage& image, double amount);

/// Blurs with a bell curve of that standard deviation (pixels). Beyond the edges nothing is assumed: pixels there are
/// the mean of those that exist.
void blur(ScreenImage& image, double deviation);

/// Replaces the top rows, down to `bottom`, between the columns `left` and `right` (exclusive) by a run from what is on
/// their left to what is on their right.
void coverTop(ScreenImage& image, int left, int right, int bottom);

/// The image at another size, not smaller than its own, each pixel interpolated between its four neighbours.
ScreenImage enlarged(const ScreenImage& image, int width, int height);

/// The brightest pixel of the image as a grey of the same luminance, from 0 to 1; 0 for an image without pixels.
double brightestGray(const ScreenImage& image);

/// The grey, from 0 to 1, that has the same relative luminance as the colour.
double grayOf(const ThemeColor& color);

}  // namespace sunpane::backdrop
