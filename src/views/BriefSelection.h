#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/briefing/Briefing.h"

/// Which parts of a briefing the column shows, and where.
namespace sunpane::brief_selection {

/// A briefing is shown up to this many bytes; a person reads a few thousand.
inline constexpr std::size_t maximumShownBytes = 1 << 20;

/// What is shown of `briefing`: all of it, or when it is longer than `maximumShownBytes`, its beginning, cut at a
/// line's end where one is in reach.
Briefing shownPart(const Briefing& briefing);

/// Whether a section looks back on the day, by its title: it begins with "🌙", or mentions "recap" or "eod".
bool isRecap(const BriefingSection& section);

/// The first section that is a recap; null without one. It is shown first, unfolded.
const BriefingSection* recapSection(const std::vector<BriefingSection>& sections);

/// A recap's title without the symbols and spaces that lead it.
std::string recapTitle(const BriefingSection& recap);

/// The sections that fold open one at a time, in document order: all but the recap and those with nothing to show.
std::vector<BriefingSection> visibleSections(const std::vector<BriefingSection>& sections);

}  // namespace sunpane::brief_selection
