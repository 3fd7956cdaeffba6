#pragma once

#include <cstddef>

/// What a person can use of one briefing. The panel draws no more of it, and says how much it leaves out.
namespace sunpane::briefing {

/// Besides the recap.
inline constexpr std::size_t maximumShownSections = 100;
inline constexpr std::size_t maximumShownCards = 200;

}  // namespace sunpane::briefing
