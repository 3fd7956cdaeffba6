#include "views/BackdropFilters.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

namespace sunpane::backdrop {
namespace {

constexpr std::array shifts{16, 8, 0};  // red, green, blue

std::uint32_t channel(std::uint32_t pixel, int shift) {
    return (pixel >> shift) & 0xFF;
}

// One row of means over `2 * radius + 1` pixels, written as a column.
void meanRow(const std::uint32_t* row, int width, int radius, std::uint32_t* column, int stride) {
    std::array<std::uint32_t, 3> sums{};
    std::uint32_t count = 0;
    const auto add = [&](int x, bool enters) {
        if (x < 0 || x >= width) return;
        count += enters ? 1 : -1;
        for (std::size_t c = 0; c < sums.size(); ++c) {
            const std::uint32_t value = channel(row[x], shifts[c]);
            sums[c] += enters ? value : -value;
        }
    };
    for (int x = 0; x < radius; ++x)
        add(x, true);
    for (int x = 0; x < width; ++x) {
        add(x + radius, true);
        assert(count > 0);  // at least the pixel itself
        std::uint32_t mean = 0;
        for (std::size_t c = 0; c < sums.size(); ++c)
            mean |= (sums[c] + count / 2) / count << shifts[c];
        column[static_cast<std::ptrdiff_t>(x) * stride] = mean;
        add(x - radius, false);
    }
}

void meanRowsTransposed(ScreenImage& image, int radius, std::vector<std::uint32_t>& spare) {
    spare.resize(image.pixels.size());
    for (int y = 0; y < image.height; ++y)
        meanRow(image.pixels.data() + static_cast<std::ptrdiff_t>(y) * image.width, image.width, radius,
                spare.data() + y, image.height);
    image.pixels.swap(spare);
    std::swap(image.width, image.height);
}

double linear(double component) {
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double encoded(double luminance) {
    return luminance <= 0.0031308 ? luminance * 12.92 : 1.055 * std::pow(luminance, 1 / 2.4) - 0.055;
}

double luminance(double red, double green, double blue) {
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
}

// Where a pixel of the enlarged image falls between two pixels of the original.
struct Between {
    int first;
    int second;
    std::uint32_t share;  // of the second, in 256ths
};

std::vector<Between> spread(int from, int to) {
    std::vector<Between> places(static_cast<std::size_t>(to));
    for (int i = 0; i < to; ++i) {
        const double at = std::clamp((i + 0.5) * from / to - 0.5, 0.0, from - 1.0);
        const int first = static_cast<int>(at);
        places[static_cast<std::size_t>(i)] = {first, std::min(first + 1, from - 1),
                                               static_cast<std::uint32_t>((at - first) * 256)};
    }
    return places;
}

// Two channels at once: they lie sixteen bits apart and a mix of two stays within its sixteen.
std::uint32_t mixed(std::uint32_t a, std::uint32_t b, std::uint32_t shareOfB) {
    constexpr std::uint32_t redBlue = 0xFF00FF;
    constexpr std::uint32_t green = 0x00FF00;
    const std::uint32_t shareOfA = 256 - shareOfB;
    const std::uint32_t outer = (((a & redBlue) * shareOfA + (b & redBlue) * shareOfB) >> 8) & redBlue;
    const std::uint32_t inner = (((a & green) * shareOfA + (b & green) * shareOfB) >> 8) & green;
    return outer | inner;
}

}  // namespace

double blurRadius(double translucency) {
    const double clearness = std::clamp((translucency - 0.6) / 0.4, 0.0, 1.0);
    return 28 - 12 * clearness;
}

void saturate(ScreenImage& image, double amount) {
    // In whole numbers, with the amount and the parts of the luminance in 1024ths.
    const auto factor = static_cast<int>(std::lround(amount * 1024));
    for (std::uint32_t& pixel : image.pixels) {
        const auto red = static_cast<int>(channel(pixel, 16));
        const auto green = static_cast<int>(channel(pixel, 8));
        const auto blue = static_cast<int>(channel(pixel, 0));
        const int gray = (218 * red + 732 * green + 74 * blue) / 1024;
        const auto away = [&](int value) {
            return static_cast<std::uint32_t>(std::clamp(gray + (value - gray) * factor / 1024, 0, 255));
        };
        pixel = away(red) << 16 | away(green) << 8 | away(blue);
    }
}

void blur(ScreenImage& image, double deviation) {
    // Three running means in each direction come close to the bell curve. One over 2r + 1 pixels has the variance
    // r (r + 1) / 3; some of them are one wider, so that the sum of the three comes near to the one that is asked for.
    constexpr int passes = 3;
    const double variance = deviation * deviation;
    const int radius = static_cast<int>((std::sqrt(1 + 4 * variance) - 1) / 2);
    const auto wider = std::lround((variance - radius * (radius + 1.0)) / (2.0 * (radius + 1) / passes));
    if (image.pixels.empty()) return;
    std::vector<std::uint32_t> spare;
    for (int pass = 0; pass < passes; ++pass) {
        const int ofPass = pass < wider ? radius + 1 : radius;
        if (ofPass == 0) continue;
        meanRowsTransposed(image, ofPass, spare);
        meanRowsTransposed(image, ofPass, spare);
    }
}

void coverTop(ScreenImage& image, int left, int right, int bottom) {
    left = std::max(left, 1);
    right = std::min(right, image.width - 1);
    for (int y = 0; y < std::min(bottom, image.height); ++y) {
        std::uint32_t* row = image.pixels.data() + static_cast<std::ptrdiff_t>(y) * image.width;
        for (int x = left; x < right; ++x) {
            const auto share = static_cast<std::uint32_t>(256 * (x - left + 1) / (right - left + 1));
            row[x] = mixed(row[left - 1], row[right], share);
        }
    }
}

ScreenImage enlarged(const ScreenImage& image, int width, int height) {
    assert(width >= image.width && height >= image.height && !image.pixels.empty());
    const auto columns = spread(image.width, width);
    const auto rows = spread(image.height, height);
    ScreenImage result{width, height, std::vector<std::uint32_t>(columns.size() * rows.size())};
    std::vector<std::uint32_t> mixedRow(static_cast<std::size_t>(image.width));
    std::uint32_t* out = result.pixels.data();
    for (const Between& row : rows) {
        const std::uint32_t* first = image.pixels.data() + static_cast<std::ptrdiff_t>(row.first) * image.width;
        const std::uint32_t* second = image.pixels.data() + static_cast<std::ptrdiff_t>(row.second) * image.width;
        for (std::size_t x = 0; x < mixedRow.size(); ++x)
            mixedRow[x] = mixed(first[x], second[x], row.share);
        for (const Between& column : columns) {
            *out++ = 0xFF000000 | mixed(mixedRow[static_cast<std::size_t>(column.first)],
                                        mixedRow[static_cast<std::size_t>(column.second)], column.share);
        }
    }
    return result;
}

double grayOf(const ThemeColor& color) {
    return encoded(luminance(linear(color.red), linear(color.green), linear(color.blue)));
}

double brightestGray(const ScreenImage& image) {
    std::array<double, 256> linearOf{};
    for (std::size_t level = 0; level < linearOf.size(); ++level)
        linearOf[level] = linear(static_cast<double>(level) / 255);
    double brightest = 0;
    for (const std::uint32_t pixel : image.pixels) {
        brightest = std::max(brightest, luminance(linearOf[channel(pixel, 16)], linearOf[channel(pixel, 8)],
                                                  linearOf[channel(pixel, 0)]));
    }
    return encoded(brightest);
}

}  // namespace sunpane::backdrop
