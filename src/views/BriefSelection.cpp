#include "views/BriefSelection.h"

#include <unicode/uchar.h>

#include <algorithm>

#include "base/Text.h"

namespace sunpane::brief_selection {

Briefing shownPart(const Briefing& briefing) {
    if (briefing.markdown.size() <= maximumShownBytes) return briefing;
    // Without a line's end in reach the cut falls between two code points.
    std::size_t end = briefing.markdown.rfind('\n', maximumShownBytes);
    if (end == std::string::npos) {
        end = maximumShownBytes;
        while (end > 0 && (static_cast<unsigned char>(briefing.markdown[end]) & 0xC0) == 0x80) --end;
    }
    return Briefing{briefing.id, briefing.date, briefing.title, briefing.markdown.substr(0, end)};
}

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

std::vector<BriefingSection> visibleSections(const std::vector<BriefingSection>& sections) {
    const BriefingSection* recap = recapSection(sections);
    std::vector<BriefingSection> visible;
    for (const auto& section : sections) {
        if (&section == recap || (section.intro.empty() && section.items.empty())) continue;
        visible.push_back(section);
    }
    return visible;
}

}  // namespace sunpane::brief_selection
