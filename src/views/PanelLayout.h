#pragma once

#include <cstddef>

/// How high the panel folds open. All lengths in points.
namespace sunpane::panel_layout {

/// What the day's title and the way from day to day stand in, above both columns.
constexpr double headerHeight = 44;

struct Content {
    double notchHeight = 0;
    double maxCardHeight = 0;
    std::size_t todos = 0;
    /// Whether there is a briefing on screen that has sections.
    bool hasSections = false;
    /// The measured height of the briefing column's content; 0 until it was measured.
    double briefContentHeight = 0;
    bool hasNextMeeting = false;
    bool hasTrack = false;
};

double expandedHeight(const Content& content);

}  // namespace sunpane::panel_layout
