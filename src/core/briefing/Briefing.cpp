#include "core/briefing/Briefing.h"

#include <utility>

namespace sunpane {

std::string Briefing::dateLabel(const LocalCalendar& calendar) const {
    return calendar.format(date, "EEEE d MMM", "en_US");
}

}  // namespace sunpane

namespace {

template <class... Values>
std::size_t combinedHash(const Values&... values) noexcept {
    std::size_t hash = 0;
    // The golden ratio's bits spread neighbouring values apart; the shifts make the order count.
    ((hash ^= std::hash<Values>{}(values) + 0x9E3779B97F4A7C15U + (hash << 6) + (hash >> 2)), ...);
    return hash;
}

}  // namespace

std::size_t std::hash<sunpane::BriefingItem>::operator()(const sunpane::BriefingItem& item) const noexcept {
    return combinedHash(item.id(), item.markdown());
}

std::size_t std::hash<sunpane::BriefingSection>::operator()(const sunpane::BriefingSection& section) const noexcept {
    std::size_t hash = combinedHash(section.id, section.title, section.intro);
    for (const auto& item : section.items)
        hash = combinedHash(hash, item);
    return hash;
}

std::size_t std::hash<sunpane::BriefingActionItem>::operator()(const sunpane::BriefingActionItem& item) const noexcept {
    return combinedHash(item.text, item.tag, item.done);
}

std::size_t std::hash<sunpane::Briefing>::operator()(const sunpane::Briefing& briefing) const noexcept {
    return combinedHash(briefing.id, briefing.date.sinceReference, briefing.title, briefing.markdown);
}
