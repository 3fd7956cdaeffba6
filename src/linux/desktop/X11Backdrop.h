#pragma once

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "linux/desktop/X11Events.h"
#include "platform/ScreenBackdrop.h"

namespace sunpane {

/// Sees what is behind the panel with the X server's own means, reduced there, so that little comes over.
///
/// With a compositor the windows below the panel are put together from their off-screen pictures, above the wallpaper
/// where that is known; otherwise, and before the panel has unfolded, the screen itself is taken. Main
/// thread only.
class X11Backdrop : public ScreenBackdrop {
public:
    /// `events` outlives the backdrop.
    explicit X11Backdrop(const X11Events& events) : events_(events) {}

    bool isBlurredByDesktop() const override { return events_.compositorBlurs(); }
    bool isLive() const override { return live_; }
    std::optional<Capture> capture(std::uint64_t windowNumber, int reduction) override;

private:
    /// In the screen's pixels.
    struct Area {
        int x;
        int y;
        int width;
        int height;
    };
    struct Layer {
        xcb_window_t window;
        Area area;
        xcb_visualid_t visual;
        bool hidesAll;  // whatever lies below it
    };

    bool prepare();
    std::optional<Area> areaOf(xcb_window_t window) const;
    std::vector<Layer> layersBelow(xcb_window_t window, const Area& area) const;
    xcb_pixmap_t wallpaper() const;
    xcb_render_pictformat_t formatOf(xcb_visualid_t visual) const;
    void draw(xcb_render_picture_t target, xcb_drawable_t source, xcb_visualid_t visual, const Area& sourceArea,
              const Area& area, int reduction, bool repeats) const;
    bool drawLayers(xcb_render_picture_t target, xcb_window_t window, const Area& area, int reduction) const;
    std::optional<ScreenImage> read(xcb_drawable_t drawable, int width, int height) const;

    const X11Events& events_;
    std::vector<xcb_render_pictvisual_t> visuals_;
    xcb_atom_t wallpaperAtom_ = XCB_ATOM_NONE;
    bool live_ = false;
};

}  // namespace sunpane
