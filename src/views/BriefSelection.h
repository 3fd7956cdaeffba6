#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/briefing/Briefing.h"

/// Which parts of a briefing the column shows, and where.
namespace sunpane::brief_selection {

/// Whether a section looks back on the day, by its title: it begins with "🌙", or mentions "recap" or "eod".
bool isRecap(const BriefingSection& section);

/// The first section that is a recap; null without one. It is shown first, unfolded.
const BriefingSection* recapSection(const std::vector<BriefingSection>& sections);

/// A recap's title without the symbols and spaces that lead it.
std::string recapTitle(const BriefingSection& recap);

/// Whether the user has hidden the card with that key.
using IsHidden = std::function<bool(std::string_view key)>;

/// A section's cards that are not hidden, in document order.
std::vector<BriefingItem> visibleItems(const BriefingSection& section, const IsHidden& isHidden);

/// The sections that fold open one at a time, in document order: all but the recap and those with nothing to show, so
/// that a section whose cards are all hidden tidies itself away. Their items are still complete.
std::vector<BriefingSection> visibleSections(const std::vector<BriefingSection>& sections, const IsHidden& isHidden);

/// The id of the section that holds the priorities which the briefing no longer mentions.
inline constexpr int missedPrioritiesId = -99;

/// The priorities (texts by key) whose topic appears nowhere in `sections`, as a section with one card each, sorted by
/// text; absent when there are none. Meant for today's briefing: an older one cannot know of them.
std::optional<BriefingSection> droppedPrioSection(const std::vector<BriefingSection>& sections,
                                                  const std::map<std::string, std::string>& prio);

}  // namespace sunpane::brief_selection
