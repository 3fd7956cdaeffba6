#include "linux/desktop/X11Backdrop.h"

#include <xcb/composite.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "linux/desktop/XcbReply.h"

namespace sunpane {
namespace {

// Whatever lies below that many windows is not seen.
constexpr std::ptrdiff_t mostLayers = 64;

xcb_render_fixed_t fixed(int value) {
    return value * 0x10000;
}

}  // namespace

bool X11Backdrop::prepare() {
    if (!events_.isConnected()) return false;
    if (!visuals_.empty()) return true;
    xcb_connection_t* const c = events_.connection();
    for (auto* extension : {&xcb_render_id, &xcb_composite_id}) {
        const auto* found = xcb_get_extension_data(c, extension);
        if (found == nullptr || found->present == 0) return false;
    }
    const auto renderVersion = xcb_render_query_version(c, 0, 11);
    const auto compositeVersion = xcb_composite_query_version(c, 0, 4);
    const auto formatsCookie = xcb_render_query_pict_formats(c);
    own(xcb_render_query_version_reply(c, renderVersion, nullptr));
    own(xcb_composite_query_version_reply(c, compositeVersion, nullptr));
    const auto formats = own(xcb_render_query_pict_formats_reply(c, formatsCookie, nullptr));
    if (!formats) return false;
    for (auto s = xcb_render_query_pict_formats_screens_iterator(formats.get()); s.rem > 0;
         xcb_render_pictscreen_next(&s)) {
        for (auto d = xcb_render_pictscreen_depths_iterator(s.data); d.rem > 0; xcb_render_pictdepth_next(&d)) {
            const auto* first = xcb_render_pictdepth_visuals(d.data);
            visuals_.insert(visuals_.end(), first, first + xcb_render_pictdepth_visuals_length(d.data));
        }
    }
    wallpaperAtom_ = events_.atom("_XROOTPMAP_ID");
    return true;
}

xcb_render_pictformat_t X11Backdrop::formatOf(xcb_visualid_t visual) const {
    const auto found =
        std::find_if(visuals_.begin(), visuals_.end(), [visual](const auto& v) { return v.visual == visual; });
    return found == visuals_.end() ? xcb_render_pictformat_t{XCB_NONE} : found->format;
}

std::optional<X11Backdrop::Area> X11Backdrop::areaOf(xcb_window_t window) const {
    xcb_connection_t* const c = events_.connection();
    const auto geometry = own(xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr));
    if (!geometry) return std::nullopt;
    return Area{geometry->x, geometry->y, geometry->width, geometry->height};
}

// From the lowest that can be seen upward. Whatever an opaque window hides over the whole area is left out.
std::vector<X11Backdrop::Layer> X11Backdrop::layersBelow(xcb_window_t window, const Area& area) const {
    xcb_connection_t* const c = events_.connection();
    const auto stack = events_.childrenOf(events_.root());
    const auto ours = std::find(stack.begin(), stack.end(), window);
    const auto first = ours - std::min(ours - stack.begin(), mostLayers);

    // All is asked before the first answer is read: one way to the server and back instead of two for each window.
    std::vector<std::pair<xcb_get_window_attributes_cookie_t, xcb_get_geometry_cookie_t>> asked;
    for (auto w = first; w != ours; ++w)
        asked.emplace_back(xcb_get_window_attributes(c, *w), xcb_get_geometry(c, *w));
    std::vector<Layer> layers;
    for (std::size_t i = 0; i < asked.size(); ++i) {
        const auto attributes = own(xcb_get_window_attributes_reply(c, asked[i].first, nullptr));
        const auto geometry = own(xcb_get_geometry_reply(c, asked[i].second, nullptr));
        if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
            attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY)
            continue;
        const int borders = 2 * geometry->border_width;
        const Area its{geometry->x, geometry->y, geometry->width + borders, geometry->height + borders};
        const bool apart = its.x >= area.x + area.width || its.y >= area.y + area.height ||
                           its.x + its.width <= area.x || its.y + its.height <= area.y;
        if (apart) continue;
        const bool hidesAll = geometry->depth == events_.screen().root_depth && its.x <= area.x && its.y <= area.y &&
                              its.x + its.width >= area.x + area.width && its.y + its.height >= area.y + area.height;
        if (hidesAll) layers.clear();
        layers.push_back({first[static_cast<std::ptrdiff_t>(i)], its, attributes->visual, hidesAll});
    }
    return layers;
}

xcb_pixmap_t X11Backdrop::wallpaper() const {
    const auto stored = events_.readProperty(events_.root(), wallpaperAtom_, 1);
    return stored.empty() ? xcb_pixmap_t{XCB_NONE} : stored.front();
}

void X11Backdrop::draw(xcb_render_picture_t target, xcb_drawable_t source, xcb_visualid_t visual,
                       const Area& sourceArea, const Area& area, int reduction, bool repeats) const {
    xcb_connection_t* const c = events_.connection();
    const xcb_render_picture_t picture = xcb_generate_id(c);
    const std::uint32_t values[] = {
        static_cast<std::uint32_t>(repeats ? XCB_RENDER_REPEAT_NORMAL : XCB_RENDER_REPEAT_NONE),
        XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS};
    xcb_render_create_picture(c, picture, source, formatOf(visual), XCB_RENDER_CP_REPEAT | XCB_RENDER_CP_SUBWINDOW_MODE,
                              values);
    // From a pixel of the target to where in the source it is taken from.
    const xcb_render_transform_t transform{
        fixed(reduction), 0, fixed(area.x - sourceArea.x), 0, fixed(reduction), fixed(area.y - sourceArea.y), 0, 0,
        fixed(1)};
    xcb_render_set_picture_transform(c, picture, transform);
    constexpr std::string_view filter = "bilinear";
    xcb_render_set_picture_filter(c, picture, filter.size(), filter.data(), 0, nullptr);
    xcb_render_composite(c, XCB_RENDER_PICT_OP_OVER, picture, XCB_NONE, target, 0, 0, 0, 0, 0, 0,
                         static_cast<std::uint16_t>(area.width / reduction),
                         static_cast<std::uint16_t>(area.height / reduction));
    xcb_render_free_picture(c, picture);
}

bool X11Backdrop::drawLayers(xcb_render_picture_t target, xcb_window_t window, const Area& area, int reduction) const {
    xcb_connection_t* const c = events_.connection();
    const auto layers = layersBelow(window, area);
    if (layers.empty() || !layers.front().hidesAll) {
        const xcb_pixmap_t paper = wallpaper();
        if (paper == XCB_NONE) return false;
        draw(target, paper, events_.screen().root_visual,
             {0, 0, events_.screen().width_in_pixels, events_.screen().height_in_pixels}, area, reduction, true);
    }
    for (const Layer& layer : layers) {
        const xcb_pixmap_t pixmap = xcb_generate_id(c);
        xcb_composite_name_window_pixmap(c, layer.window, pixmap);
        draw(target, pixmap, layer.visual, layer.area, area, reduction, false);
        xcb_free_pixmap(c, pixmap);
    }
    return true;
}

std::optional<ScreenImage> X11Backdrop::read(xcb_drawable_t drawable, int width, int height) const {
    xcb_connection_t* const c = events_.connection();
    const auto cookie = xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, 0, 0, static_cast<std::uint16_t>(width),
                                      static_cast<std::uint16_t>(height), ~0U);
    const auto reply = own(xcb_get_image_reply(c, cookie, nullptr));
    ScreenImage image{width, height, std::vector<std::uint32_t>(static_cast<std::size_t>(width) * height)};
    const std::size_t bytes = image.pixels.size() * sizeof(std::uint32_t);
    // A screen of other than 32 bits a pixel goes without a backdrop.
    if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) != bytes) return std::nullopt;
    std::memcpy(image.pixels.data(), xcb_get_image_data(reply.get()), bytes);
    for (std::uint32_t& pixel : image.pixels)
        pixel &= 0xFFFFFF;
    return image;
}

std::optional<ScreenBackdrop::Capture> X11Backdrop::capture(std::uint64_t windowNumber, int reduction) {
    live_ = false;
    if (!prepare() || events_.screen().root_depth != 24) return std::nullopt;
    xcb_connection_t* const c = events_.connection();
    const auto window = static_cast<xcb_window_t>(windowNumber);
    const auto area = areaOf(window);
    if (!area || area->width < reduction || area->height < reduction) return std::nullopt;
    const int width = area->width / reduction;
    const int height = area->height / reduction;

    const xcb_pixmap_t pixmap = xcb_generate_id(c);
    xcb_create_pixmap(c, events_.screen().root_depth, pixmap, events_.screen().root, static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height));
    const xcb_render_picture_t target = xcb_generate_id(c);
    xcb_render_create_picture(c, target, pixmap, formatOf(events_.screen().root_visual), 0, nullptr);
    // No layer need cover all of it: a part of the window may be off the screen, and a new pixmap holds anything.
    const xcb_rectangle_t whole{0, 0, static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)};
    xcb_render_fill_rectangles(c, XCB_RENDER_PICT_OP_SRC, target, {0, 0, 0, 0xFFFF}, 1, &whole);
    live_ = events_.hasCompositor() && drawLayers(target, window, *area, reduction);
    if (!live_) {
        draw(target, events_.screen().root, events_.screen().root_visual,
             {0, 0, events_.screen().width_in_pixels, events_.screen().height_in_pixels}, *area, reduction, false);
    }
    auto image = read(pixmap, width, height);
    xcb_render_free_picture(c, target);
    xcb_free_pixmap(c, pixmap);
    xcb_flush(c);
    if (!image) return std::nullopt;
    return Capture{*std::move(image), area->width, area->height, !live_};
}

}  // namespace sunpane
