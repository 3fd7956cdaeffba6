#include "core/briefing/BriefingCheck.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "base/Text.h"
#include "core/briefing/BriefingFile.h"
#include "core/briefing/BriefingLimits.h"
#include "core/briefing/BriefingParser.h"

namespace sunpane::briefing {
namespace {

// The keys of cards that say that there is nothing to say.
const std::set<std::string, std::less<>>& fillerKeys() {
    static const std::set<std::string, std::less<>> keys{"empty",
                                                         "n-a",
                                                         "na",
                                                         "nil",
                                                         "no-action-items",
                                                         "no-emails",
                                                         "no-events",
                                                         "no-items",
                                                         "no-meetings",
                                                         "no-new-emails",
                                                         "no-new-items",
                                                         "no-new-updates",
                                                         "no-news",
                                                         "no-tasks",
                                                         "no-update",
                                                         "no-updates",
                                                         "none",
                                                         "none-today",
                                                         "nothing",
                                                         "nothing-new",
                                                         "nothing-today",
                                                         "nothing-to-report",
                                                         "nothing-to-report-today",
                                                         "placeholder",
                                                         "tba",
                                                         "tbd",
                                                         "nothing-scheduled"};
    return keys;
}

bool isFiller(std::string_view text) {
    return fillerKeys().contains(BriefingItem::key(text));
}

std::size_t headingMarks(std::string_view trimmedLine) {
    return std::min(trimmedLine.find_first_not_of('#'), trimmedLine.size());
}

bool isAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// The size of a list marker and its space that this program does not take for a bullet; 0 when there is none.
std::size_t foreignMarkerSize(std::string_view text) {
    for (const std::string_view marker :
         {"* ", "+ ", "\u2013 ", "\u2014 ", "\u2023 ", "\u25AA ", "\u25E6 ", "\u00B7 "}) {
        if (text.starts_with(marker)) return marker.size();
    }
    std::size_t digits = 0;
    while (digits < text.size() && isAsciiDigit(text[digits]))
        ++digits;
    constexpr std::size_t maximumDigits = 3;  // "2026. " is a year at the end of a sentence
    if (digits == 0 || digits > maximumDigits || text.size() < digits + 2) return 0;
    return (text[digits] == '.' || text[digits] == ')') && text[digits + 1] == ' ' ? digits + 2 : 0;
}

// A line of three or more of one sign, as other readers of markdown take it for a rule.
bool looksLikeRule(std::string_view trimmedLine) {
    constexpr std::size_t minimumSigns = 3;
    const std::string signs = text::replacingAll(trimmedLine, " ", "");
    return signs.size() >= minimumSigns && std::string_view("-*_=").find(signs[0]) != std::string_view::npos &&
           signs.find_first_not_of(signs[0]) == std::string::npos;
}

bool holdsControl(std::string_view line) {
    for (std::size_t position = 0; position < line.size();) {
        const char32_t codePoint = text::nextCodePoint(line, position);
        if (codePoint != '\t' && u_charType(static_cast<UChar32>(codePoint)) == U_CONTROL_CHAR) return true;
    }
    return false;
}

std::size_t boldMarkCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = text.find("**"); at != std::string_view::npos; at = text.find("**", at + 2))
        ++count;
    return count;
}

/// Walks a briefing as the parser does and notes what the writer probably did not mean.
class Checker {
public:
    void take(std::size_t number, std::string_view line) {
        line_ = number;
        const std::string_view trimmed = text::trimWhitespace(line);
        if (trimmed.empty()) return;
        if (holdsControl(line)) note("a control character");
        if (!hasTitle_) {
            hasTitle_ = true;
            if (takeTitle(trimmed)) return;
        }
        if (!takeHeading(trimmed) && !isRule(trimmed)) takeContent(line, trimmed);
    }

    std::vector<Finding> finish() && {
        closeSection();
        if (!hasTitle_) findings_.push_back({1, "the file is empty"});
        return std::move(findings_);
    }

private:
    struct Card {
        std::size_t line;
        std::string text;
    };

    void note(std::string message) { findings_.push_back({line_, std::move(message)}); }

    // False when the line is no title and has to be read as something else.
    bool takeTitle(std::string_view trimmed) {
        const std::size_t marks = headingMarks(trimmed);
        if (marks == 0) {
            note("no title: the first line should be \"# \" and the title");
            return false;
        }
        if (marks > 1) note("the first heading becomes the title and opens no section; put a \"# \" title above it");
        if (text::trimWhitespace(trimmed.substr(marks)).empty()) note("the title is empty");
        return true;
    }

    bool takeHeading(std::string_view trimmed) {
        if (const auto title = markedHeadingTitle(trimmed)) {
            openSection(*title);
            if (cardText(*title) || foreignMarkerSize(*title) > 0)
                note("a heading that swallows a bullet; put it on a line of its own");
            return true;
        }
        if (const auto title = boldHeaderTitle(trimmed)) {
            const bool isBullet = trimmed.front() == '-' || cardText(trimmed).has_value();
            openSection(*title);
            if (isBullet) note("a bullet that is only a bold phrase becomes a heading; add what it is about");
            return true;
        }
        return false;
    }

    void openSection(std::string_view title) {
        closeSection();
        heading_ = line_;
        holdsActionItems_ = isActionItemsTitle(title);
        isRecap_ = !hasRecap_ && !holdsActionItems_ && isRecapTitle(title);
        isEmpty_ = true;
        cards_ = 0;
    }

    void closeSection() {
        closeCard();
        if (isEmpty_) {
            if (heading_) findings_.push_back({*heading_, "an empty section is not shown; leave it out"});
            return;
        }
        hasRecap_ = hasRecap_ || isRecap_;
        if (holdsActionItems_ || isRecap_ || ++sections_ != maximumShownSections + 1) return;
        findings_.push_back({*heading_, "more than " + std::to_string(maximumShownSections) +
                                            " sections; from here on they are not shown"});
    }

    void takeContent(std::string_view line, std::string_view trimmed) {
        isEmpty_ = false;
        if (trimmed == "-" || trimmed == "\u2022") {
            note("an empty bullet becomes text");
        } else if (takeFalseHeading(trimmed) || takeFalseBullet(trimmed) || takeCheckbox(trimmed)) {
            appendToCard(trimmed);
        } else if (const auto text = cardText(trimmed)) {
            takeCard(*text, line.data() != trimmed.data());
        } else {
            takeText(line, trimmed);
        }
    }

    void appendToCard(std::string_view trimmed) {
        if (card_) card_->text.append(" ").append(trimmed);
    }

    bool takeFalseHeading(std::string_view trimmed) {
        constexpr std::size_t maximumBoldHeading = 80;
        const std::size_t marks = headingMarks(trimmed);
        if (marks > 0) {
            const bool hasSpace = marks < trimmed.size() && trimmed[marks] == ' ';
            if (marks == 1 && !hasSpace) return false;  // a number or a tag
            if (marks == trimmed.size()) {
                note("a heading without a name is text");
            } else if (!hasSpace) {
                note("a heading needs a space behind its \"#\" signs; this is text");
            } else {
                note("a heading has two to four \"#\" signs, best three; this is text");
            }
            return true;
        }
        if (trimmed.size() > maximumBoldHeading && trimmed.starts_with("**") && trimmed.ends_with("**") &&
            boldMarkCount(trimmed) == 2) {
            note("a bold line beyond 80 characters is no heading but text");
            return true;
        }
        return false;
    }

    bool takeFalseBullet(std::string_view trimmed) {
        if (looksLikeRule(trimmed)) {
            note("only \"---\" is dropped as a rule; this is shown");
            return true;
        }
        if (trimmed.starts_with("```")) {
            note("a code fence is text");
            return true;
        }
        if (const std::size_t marker = foreignMarkerSize(trimmed)) {
            note(actionItem(trimmed.substr(marker)) ? "no action item: write \"- [ ] \""
                                                    : "no card: write the bullet with \"- \"");
            return true;
        }
        if (trimmed.size() > 1 && trimmed[0] == '-' &&
            (isAsciiLetter(trimmed[1]) || trimmed[1] == '[' || trimmed.starts_with("-**"))) {
            note("a bullet needs a space behind its \"-\"; this is text");
            return true;
        }
        return false;
    }

    // Every line that begins with a bracket, which the program never takes for a card.
    bool takeCheckbox(std::string_view trimmed) {
        const bool isBullet = text::hasPrefix(trimmed, "- ");
        const std::string_view rest = isBullet ? text::trimWhitespace(trimmed.substr(2)) : trimmed;
        if (!text::hasPrefix(rest, "[")) return false;
        const auto item = actionItem(trimmed);
        if (!item) {
            noteFalseCheckbox(rest, isBullet);
            return true;
        }
        if (isFiller(item->text)) note("a filler action item; leave it out");
        const auto [first, isNew] = actionItemLines_.emplace(item->text, line_);
        if (!isNew) note("the same action item as on line " + std::to_string(first->second));
        if (!holdsActionItems_) {
            note(card_ ? "a checkbox is glued to the card above it; put it under \"### \u2705 Action Items\""
                       : "a checkbox outside of the action items also shows as text; put it under \"### \u2705 Action "
                         "Items\"");
        }
        return true;
    }

    void noteFalseCheckbox(std::string_view rest, bool isBullet) {
        const std::size_t end = rest.find(']');
        if (end == std::string_view::npos) {
            if (isBullet) note("a bullet that begins with \"[\" is no card; begin it with a word");
        } else if (rest.substr(end + 1).starts_with('(')) {
            if (isBullet) note("a bullet that begins with a link is no card; begin it with a word");
        } else if (const auto mark = text::trimWhitespace(rest.substr(1, end - 1));
                   mark.empty() || mark == "x" || mark == "X") {
            note("a checkbox without a task");
        } else if (isBullet) {
            note("a checkbox is \"[ ]\" or \"[x]\"; this is neither an action item nor a card");
        }
    }

    void takeCard(std::string_view text, bool isIndented) {
        if (holdsActionItems_) {
            note("a bullet among the action items needs a checkbox, \"- [ ] \"; it is not shown");
            return;
        }
        if (isIndented && card_) note("an indented bullet is a card of its own, not a part of the one above");
        closeCard();
        if (++cards_ == maximumShownCards + 1) {
            note("more than " + std::to_string(maximumShownCards) +
                 " cards in a section; from here on they are not shown");
        }
        card_ = Card{line_, std::string(text)};
    }

    void takeText(std::string_view line, std::string_view trimmed) {
        if (holdsActionItems_) {
            note("text among the action items is not shown");
        } else if (card_) {
            if (line.data() == trimmed.data()) note("text is glued to the card above it; indent it if that is meant");
        } else if (isFiller(trimmed)) {
            note("a filler; leave the section out");
        }
        appendToCard(trimmed);
    }

    void closeCard() {
        if (!card_) return;
        const Card card = *std::exchange(card_, std::nullopt);
        const auto noteCard = [&](std::string message) { findings_.push_back({card.line, std::move(message)}); };
        const std::string key = BriefingItem::key(card.text);
        if (key.empty()) {
            noteCard("a card without a letter or a number cannot be told from others");
        } else if (fillerKeys().contains(key)) {
            noteCard("a filler card; leave the section out");
        } else if (const auto [first, isNew] = cardLines_.emplace(key, card.line); !isNew) {
            noteCard("the same card as on line " + std::to_string(first->second));
        }
        if (text::firstCharacters(card.text, maximumCardCharacters).size() < card.text.size()) {
            noteCard("a card beyond " + std::to_string(maximumCardCharacters) + " characters; cut it into several");
        }
        if (boldMarkCount(card.text) % 2 != 0) noteCard("a \"**\" without its partner shows as it is");
    }

    std::vector<Finding> findings_;
    std::size_t line_ = 1;
    bool hasTitle_ = false;
    // The section that is open: its heading's line, unless it is the text before the first heading.
    std::optional<std::size_t> heading_;
    bool holdsActionItems_ = false;
    bool isRecap_ = false;
    bool isEmpty_ = true;
    std::size_t cards_ = 0;
    // Of those before it.
    bool hasRecap_ = false;
    std::size_t sections_ = 0;
    std::optional<Card> card_;
    // Where each card and action item was seen first.
    std::map<std::string, std::size_t> cardLines_;
    std::map<std::string, std::size_t> actionItemLines_;
};

std::size_t lineOfFirstInvalidByte(std::string_view bytes) {
    std::size_t line = 1;
    while (true) {
        const std::size_t end = bytes.find('\n');
        if (end == std::string_view::npos || !text::isValidUtf8(bytes.substr(0, end))) return line;
        bytes.remove_prefix(end + 1);
        ++line;
    }
}

}  // namespace

std::vector<Finding> check(std::string_view name, std::string_view bytes, const LocalCalendar& calendar) {
    if (!text::isValidUtf8(bytes)) return {{lineOfFirstInvalidByte(bytes), "not UTF-8; the whole file is ignored"}};
    const std::string_view content = withoutByteOrderMark(bytes);
    Checker checker;
    std::size_t number = 1;
    const char* counted = content.data();
    text::LineReader reader(content);
    for (std::string_view line; reader.next(line);) {
        number += static_cast<std::size_t>(std::count(counted, line.data(), '\n'));
        counted = line.data();
        checker.take(number, line);
    }
    std::vector<Finding> findings = std::move(checker).finish();
    if (!isMarkdownName(name)) {
        findings.push_back({1, "the file name does not end in \".md\"; the file is ignored"});
    } else if (!dateFromName(stem(text::toValidUtf8(name)), calendar)) {
        findings.push_back({1, "the file name holds no day such as 2026-11-16"});
    }
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    return findings;
}

}  // namespace sunpane::briefing
