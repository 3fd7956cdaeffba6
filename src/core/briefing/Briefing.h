#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Dates.h"
#include "base/Instant.h"

namespace sunpane {

/// One card of a briefing. A plain value; made only from its text, so that the id always belongs to it.
class BriefingItem {
public:
    /// Keys are cut to this many characters.
    static constexpr std::size_t maximumKeyCharacters = 100;

    /// `markdown` is valid UTF-8.
    explicit BriefingItem(std::string_view markdown);

    /// The key that identifies a card across reloads and across days: the text's words in lower case joined by "-",
    /// so that markup, symbols and punctuation do not count but any change of wording does. Flags, feedback and todos
    /// store it. Empty for a text without a letter, mark or number. `text` is valid UTF-8.
    static std::string key(std::string_view text);

    /// The key of `markdown`. Two cards with the same wording share it. The view lives as long as any copy of the item.
    std::string_view id() const { return std::string_view(*storage_).substr(start_ + markdownSize_, idSize_); }

    /// The bullet's text without its marker, with its continuation lines appended, one space before each. The view
    /// lives as long as any copy of the item.
    std::string_view markdown() const { return std::string_view(*storage_).substr(start_, markdownSize_); }

    /// What is offered when the card is turned into a todo: its first bold phrase when that says enough, otherwise
    /// its text up to a spaced em dash, or its beginning.
    std::string suggestedTodoText() const;

    friend bool operator==(const BriefingItem& a, const BriefingItem& b) { return a.markdown() == b.markdown(); }

private:
    friend class BriefingItemWriter;
    using Storage = std::shared_ptr<const std::string>;
    BriefingItem(Storage storage, std::size_t start, std::size_t markdownSize, std::size_t idSize);

    // The cards of a briefing share one text, each holding its markdown and, right behind it, its key: one allocation
    // instead of two for every card.
    Storage storage_;
    std::size_t start_ = 0;
    std::size_t markdownSize_ = 0;
    std::size_t idSize_ = 0;
};

/// A headed part of a briefing. A plain value.
struct BriefingSection {
    /// Position among the briefing's sections, counted from 0.
    int id = 0;
    std::string title;
    /// What stands before the first card; lines joined with "\n", possibly empty.
    std::string intro;
    std::vector<BriefingItem> items;

    friend bool operator==(const BriefingSection&, const BriefingSection&) = default;
};

/// A line with a checkbox. A plain value.
struct BriefingActionItem {
    std::string text;
    /// "WRK" or "PRSNL", when the line carries one.
    std::optional<std::string> tag;
    bool done = false;

    friend bool operator==(const BriefingActionItem&, const BriefingActionItem&) = default;
};

/// One day's document as the agent wrote it. A plain value that may be used on any thread; what is derived from the
/// markdown is computed anew on every call, so keep a copy of what is needed repeatedly.
struct Briefing {
    static constexpr std::string_view defaultTitle = "Morning Briefing";

    /// The file's name with its extension.
    std::string id;
    /// The day that the briefing is for: its first instant in the user's time zone, or when the file is not named
    /// after a day, the moment of its last modification.
    Instant date;
    std::string title;
    /// The file's text without the title line, in valid UTF-8.
    std::string markdown;

    /// "Monday 16 Nov": always in English, in the calendar's time zone.
    std::string dateLabel(const LocalCalendar& calendar) const;

    /// The cards and introductions by heading, in document order, without the blocks of action items.
    std::vector<BriefingSection> sections() const;

    /// Every line with a checkbox, whatever section it stands in, in document order.
    std::vector<BriefingActionItem> actionItems() const;

    friend bool operator==(const Briefing&, const Briefing&) = default;
};

}  // namespace sunpane

template <>
struct std::hash<sunpane::BriefingItem> {
    std::size_t operator()(const sunpane::BriefingItem& item) const noexcept;
};
template <>
struct std::hash<sunpane::BriefingSection> {
    std::size_t operator()(const sunpane::BriefingSection& section) const noexcept;
};
template <>
struct std::hash<sunpane::BriefingActionItem> {
    std::size_t operator()(const sunpane::BriefingActionItem& item) const noexcept;
};
template <>
struct std::hash<sunpane::Briefing> {
    std::size_t operator()(const sunpane::Briefing& briefing) const noexcept;
};
