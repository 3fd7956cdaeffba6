#include "core/briefing/Briefing.h"

#include <utility>

#include "base/Text.h"
#include "core/briefing/BriefingParser.h"
#include "core/briefing/ItemKey.h"

namespace sunpane {
namespace {

// The first match of \*\*([^*]+)\*\*, asterisks included; empty when there is none.
std::string_view firstBoldPhrase(std::string_view markdown) {
    constexpr std::string_view bold = "**";
    for (std::size_t start = markdown.find(bold); start != std::string_view::npos;) {
        const std::size_t end = markdown.find('*', start + bold.size());
        if (end == std::string_view::npos) break;
        if (end == start + bold.size()) {
            ++start;  // three in a row: the phrase may begin behind the last two
        } else if (markdown.substr(end).starts_with(bold)) {
            return markdown.substr(start, end + bold.size() - start);
        } else {
            start = markdown.find(bold, end + 1);
        }
    }
    return {};
}

}  // namespace

BriefingItem::BriefingItem(std::string_view markdown) {
    BriefingItemWriter writer(2 * markdown.size());
    writer.begin(markdown);
    *this = writer.finish();
}

BriefingItem::BriefingItem(Storage storage, std::size_t start, std::size_t markdownSize, std::size_t idSize)
    : storage_(std::move(storage)), start_(start), markdownSize_(markdownSize), idSize_(idSize) {}

std::string BriefingItem::key(std::string_view text) {
    std::string key;
    appendItemKey(text, key);
    return key;
}

std::string BriefingItem::suggestedTodoText() const {
    constexpr std::size_t boldMarkCharacters = 2;
    constexpr std::size_t minimumPhraseCharacters = 8;
    constexpr std::size_t maximumCharacters = 100;
    if (auto phrase = firstBoldPhrase(markdown()); !phrase.empty()) {
        phrase = text::dropFirstCharacters(phrase, boldMarkCharacters);
        phrase = text::trimWhitespace(text::dropLastCharacters(phrase, boldMarkCharacters));
        if (text::characterCount(phrase) >= minimumPhraseCharacters) return std::string(phrase);
    }
    const std::string plain = text::replacingAll(text::replacingAll(markdown(), "**", ""), "`", "");
    const std::size_t dash = plain.find(" \u2014 ");
    const std::string_view start = dash != std::string::npos ? std::string_view(plain).substr(0, dash)
                                                             : text::firstCharacters(plain, maximumCharacters);
    return std::string(text::trimWhitespace(start));
}

std::vector<BriefingSection> Briefing::sections() const {
    return briefing::sections(markdown);
}

std::vector<BriefingActionItem> Briefing::actionItems() const {
    return briefing::actionItems(markdown);
}

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
    std::size_t result = combinedHash(section.id, section.title, section.intro);
    for (const auto& item : section.items)
        result = combinedHash(result, item);
    return result;
}

std::size_t std::hash<sunpane::BriefingActionItem>::operator()(const sunpane::BriefingActionItem& item) const noexcept {
    return combinedHash(item.text, item.tag, item.done);
}

std::size_t std::hash<sunpane::Briefing>::operator()(const sunpane::Briefing& briefing) const noexcept {
    return combinedHash(briefing.id, briefing.date.sinceReference, briefing.title, briefing.markdown);
}
