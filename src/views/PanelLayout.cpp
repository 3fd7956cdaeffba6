#include "views/PanelLayout.h"

#include <algorithm>

namespace sunpane::panel_layout {
namespace {

constexpr double bottomPadding = 30;
constexpr double lowestPanel = 240;

double todoColumnHeight(std::size_t todos) {
    constexpr std::size_t mostRowsInView = 12;
    if (todos == 0) return 144;
    return 116 + 28 * static_cast<double>(std::min(todos, mostRowsInView));
}

double briefColumnHeight(const Content& content) {
    constexpr double meetingStrip = 42;
    constexpr double nowPlayingStrip = 54;
    double height = 96;
    if (content.hasSections) height = content.briefContentHeight > 0 ? content.briefContentHeight + 18 : 280;
    if (content.hasNextMeeting) height += meetingStrip;
    if (content.hasTrack) height += nowPlayingStrip;
    return height;
}

}  // namespace

double expandedHeight(const Content& content) {
    const double columns = std::max(briefColumnHeight(content), todoColumnHeight(content.todos));
    const double height = content.notchHeight + headerHeight + columns + bottomPadding;
    return std::min(std::max(height, lowestPanel), content.maxCardHeight);
}

}  // namespace sunpane::panel_layout
