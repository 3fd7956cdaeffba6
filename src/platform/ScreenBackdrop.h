#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace sunpane {

/// Pixels as 0xRRGGBB, row by row from the top; the highest eight bits mean nothing.
struct ScreenImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
    friend bool operator==(const ScreenImage&, const ScreenImage&) = default;
};

/// What lies behind a window of ours, for a backdrop that is made of it. Main thread only.
class ScreenBackdrop {
public:
    struct Capture {
        /// What lies behind the whole window, at a reduced size.
        ScreenImage image;
        /// The window's size in the screen's own pixels.
        int fullWidth = 0;
        int fullHeight = 0;
        /// Whether the picture has what our window showed at that moment instead of what lies behind that.
        bool hasWindowInIt = false;
    };

    virtual ~ScreenBackdrop() = default;

    /// Whether the desktop blurs what is behind our window by itself: then a picture is not needed, and the window is
    /// painted on nothing.
    virtual bool isBlurredByDesktop() const = 0;

    /// Whether `capture` can tell what is behind the window while the window covers it.
    virtual bool isLive() const = 0;

    /// The picture at one `reduction`-th of its size. Nothing when the desktop does not let us see.
    virtual std::optional<Capture> capture(std::uint64_t windowNumber, int reduction) = 0;
};

}  // namespace sunpane
