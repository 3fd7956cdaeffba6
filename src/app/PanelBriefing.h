#pragma once

#include <cstddef>

#include "core/briefing/Briefing.h"

namespace sunpane {

/// The panel works with this much of a briefing's text; a person reads a few thousand bytes.
inline constexpr std::size_t maximumPanelBytes = 1 << 20;

/// Cuts a longer briefing to its beginning, at a line's end where one is in reach, so that a huge file costs the main
/// thread nothing. Any thread.
void limitToPanel(Briefing& briefing);

}  // namespace sunpane
