#include "views/BriefSelection.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <iterator>

#include "base/Text.h"
#include "core/briefing/BriefingParser.h"
#include "core/stores/ItemFlagStore.h"

namespace sunpane::brief_selection {

bool isRecap(const BriefingSection& section) {
    return briefing::isRecapTitle(section.title);
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

std::optional<BriefingSection> droppedPrioSection(const std::vector<BriefingSection>& sections,
                                                  const std::map<std::string, std::string>& prio) {
    if (prio.empty()) return std::nullopt;
    std::string everything;
    for (const auto& section : sections) {
        everything.append(section.title).append(" ").append(section.intro).append(" ");
        for (const auto& item : section.items)
            everything.append(item.markdown()).append(" ");
    }
    const auto mentioned = ItemFlagStore::significantWords(everything);
    std::vector<std::string> missed;
    for (const auto& [key, text] : prio) {
        if (!ItemFlagStore::sameTopic(ItemFlagStore::significantWords(text), mentioned)) missed.push_back(text);
    }
    if (missed.empty()) return std::nullopt;
    std::sort(missed.begin(), missed.end());
    BriefingSection section{missedPrioritiesId, "⚡ Priorities the brief missed", {}, {}};
    for (const auto& text : missed)
        section.items.emplace_back("**" + text + "**");
    return section;
}

}  // namespace sunpane::brief_selection
