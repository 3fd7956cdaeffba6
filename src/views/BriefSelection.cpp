#include "views/BriefSelection.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <iterator>

#include "base/Text.h"

namespace sunpane::brief_selection {

bool isRecap(const BriefingSection& section) {
    return text::hasPrefix(section.title, "🌙") || text::containsIgnoringCase(section.title, "recap") ||
           text::containsIgnoringCase(section.title, "eod");
}

const BriefingSection* recapSection(const std::vector<BriefingSection>& sections) {
    const auto found = std::find_if(sections.begin(), sections.end(), isRecap);
    return found == sections.end() ? nullptr : &*found;
}

std::string recapTitle(const BriefingSection& recap) {
    for (std::size_t position = 0; position < recap.title.size();) {
        const std::size_t at = position;
        if (u_isUAlphabetic(static_cast<UChar32>(text::nextCodePoint(recap.title, position))) != 0) {
            return recap.title.substr(at);
        }
    }
    return {};
}

std::vector<BriefingItem> visibleItems(const BriefingSection& section, const IsHidden& isHidden) {
    std::vector<BriefingItem> items;
    std::copy_if(section.items.begin(), section.items.end(), std::back_inserter(items),
                 [&](const BriefingItem& item) { return !isHidden(item.id()); });
    return items;
}

std::vector<BriefingSection> visibleSections(const std::vector<BriefingSection>& sections, const IsHidden& isHidden) {
    const BriefingSection* recap = recapSection(sections);
    std::vector<BriefingSection> visible;
    for (const auto& section : sections) {
        if (&section == recap) continue;
        const bool allHidden = std::all_of(section.items.begin(), section.items.end(),
                                           [&](const BriefingItem& item) { return isHidden(item.id()); });
        if (section.intro.empty() && allHidden) continue;
        visible.push_back(section);
    }
    return visible;
}

}  // namespace sunpane::brief_selection
