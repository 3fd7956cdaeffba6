#include "core/briefing/BriefingParser.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cassert>
#include <utility>

#include "base/Text.h"
#include "core/briefing/ItemKey.h"

namespace sunpane {

BriefingItemWriter::BriefingItemWriter(std::size_t expectedSize) : reserve_(std::min(expectedSize, storageSize)) {
    storage_->reserve(reserve_);
}

void BriefingItemWriter::begin(std::string_view text) {
    start_ = storage_->size();
    storage_->append(text);
}

void BriefingItemWriter::add(std::string_view text) {
    storage_->push_back(' ');
    storage_->append(text);
}

BriefingItem BriefingItemWriter::finish() {
    const std::size_t markdownSize = storage_->size() - start_;
    const std::size_t idSize = appendItemKey(std::string_view(*storage_).substr(start_), *storage_);
    BriefingItem item(storage_, start_, markdownSize, idSize);
    if (storage_->size() >= storageSize) {
        storage_ = std::make_shared<std::string>();
        storage_->reserve(reserve_);
    }
    return item;
}

namespace briefing {
namespace {

bool isAsciiByte(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

// The ASCII case of hasPrefix, for prefixes whose last character a mark could join.
inline bool startsWith(std::string_view text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    return text.size() == prefix.size() || isAsciiByte(text[prefix.size()]) || text::hasPrefix(text, prefix);
}

template <class Predicate>
bool anyCharacter(std::string_view text, Predicate matches) {
    while (!text.empty()) {
        std::size_t position = 0;
        if (matches(text::nextCodePoint(text, position))) return true;
        text = text::dropFirstCharacters(text, 1);
    }
    return false;
}

bool isLetter(char32_t codePoint) {
    return u_isUAlphabetic(static_cast<UChar32>(codePoint)) != 0;
}

bool isLetterOrNumber(char32_t codePoint) {
    return isLetter(codePoint) ||
           u_getIntPropertyValue(static_cast<UChar32>(codePoint), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

// The characters of `text` that are letters, whole, with the marks that they carry.
std::string lettersOf(std::string_view text) {
    std::string letters;
    while (!text.empty()) {
        const auto character = text::firstCharacters(text, 1);
        std::size_t position = 0;
        if (isLetter(text::nextCodePoint(character, position))) letters += character;
        text.remove_prefix(character.size());
    }
    return letters;
}

constexpr std::string_view workTag = "WRK";
constexpr std::string_view personalTag = "PRSNL";

bool containsIgnoringAsciiCase(std::string_view text, std::string_view lowercasePart) {
    return std::search(text.begin(), text.end(), lowercasePart.begin(), lowercasePart.end(), [](char c, char lower) {
               return (c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) == lower;
           }) != text.end();
}

// Whether an ASCII letter that is in no tag is a character of its own in `title`, which then cannot consist of a tag's
// letters. Behind another ASCII byte, every ASCII letter begins a character.
bool holdsLetterOfNoTag(std::string_view title) {
    constexpr std::string_view tagLetters = "wrkpsnl";
    for (std::size_t i = 0; i < title.size(); ++i) {
        const char lower = static_cast<char>(title[i] | 0x20);
        if (!isAsciiByte(title[i]) || lower < 'a' || lower > 'z') continue;
        if (i > 0 && !isAsciiByte(title[i - 1])) continue;
        if (tagLetters.find(lower) == std::string_view::npos) return true;
    }
    return false;
}

/// Collects the sections of one briefing, line by line.
class SectionBuilder {
public:
    // A card and its key take at most about twice what the card takes in the markdown.
    explicit SectionBuilder(std::string_view markdown) : writer_(2 * markdown.size()) {}

    void open(std::string title) {
        close();
        section_.title = std::move(title);
        isSkipped_ = isActionItemsTitle(section_.title);
    }

    void add(std::string_view line, std::string_view trimmedLine) {
        if (isSkipped_) return;
        if (const auto text = cardText(trimmedLine)) {
            finishItem();
            if (section_.items.empty()) section_.items.reserve(usualItemCount);
            writer_.begin(*text);
            hasOpenItem_ = true;
        } else if (trimmedLine.empty()) {
            if (!hasOpenItem_ && !section_.intro.empty()) section_.intro.append(line).push_back('\n');
        } else if (hasOpenItem_) {
            writer_.add(trimmedLine);
        } else {
            section_.intro.append(section_.intro.empty() ? line.substr(leadingSpace(line, trimmedLine)) : line);
            section_.intro.push_back('\n');
        }
    }

    std::vector<BriefingSection> finish() && {
        close();
        return std::move(sections_);
    }

private:
    static constexpr std::size_t usualItemCount = 8;

    static std::size_t leadingSpace(std::string_view line, std::string_view trimmedLine) {
        return static_cast<std::size_t>(trimmedLine.data() - line.data());
    }

    void finishItem() {
        if (hasOpenItem_) section_.items.push_back(writer_.finish());
        hasOpenItem_ = false;
    }

    void close() {
        finishItem();
        section_.intro.resize(text::trimWhitespaceAndNewlines(section_.intro).size());
        if (!isSkipped_ && (!section_.intro.empty() || !section_.items.empty())) {
            section_.id = static_cast<int>(sections_.size());
            sections_.push_back(std::move(section_));
        }
        section_ = {};
    }

    std::vector<BriefingSection> sections_;
    BriefingSection section_{.id = 0, .title = "Overview", .intro = {}, .items = {}};
    BriefingItemWriter writer_;
    bool hasOpenItem_ = false;
    bool isSkipped_ = false;
};

// Whether `text` in upper case begins with `word` and a space.
bool beginsWithWord(std::string_view text, std::string_view word) {
    const std::string_view start = text.substr(0, word.size() + 2);
    if (std::all_of(start.begin(), start.end(), isAsciiByte)) {
        if (text.size() <= word.size() || text[word.size()] != ' ') return false;
        return std::equal(word.begin(), word.end(), text.begin(), [](char upper, char c) {
            return upper == (c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c);
        });
    }
    // One character beyond the space decides whether a mark joins it.
    const std::string uppercased = text::uppercased(text::firstCharacters(text, word.size() + 2));
    return text::hasPrefix(uppercased, std::string(word) + ' ');
}

}  // namespace

Document splitDocument(std::string_view text) {
    Document document;
    document.title = Briefing::defaultTitle;
    text::LineReader reader(text);
    std::string_view rest = text;
    for (std::string_view line; reader.next(line);) {
        const std::string_view trimmed = text::trimWhitespace(line);
        if (trimmed.empty()) continue;
        if (startsWith(trimmed, "#")) {
            std::string_view title = trimmed;
            while (startsWith(title, "#"))
                title.remove_prefix(1);
            document.title = text::trimWhitespace(title);
            rest = text.substr(static_cast<std::size_t>(line.data() + line.size() - text.data()));
        }
        break;
    }
    document.markdown = text::withPlainNewlines(text::trimWhitespaceAndNewlines(rest));
    // A line or paragraph separator is trimmed only now that it has become a plain newline.
    const std::string_view trimmed = text::trimWhitespaceAndNewlines(document.markdown);
    if (trimmed.size() < document.markdown.size()) document.markdown = std::string(trimmed);
    return document;
}

std::optional<std::string_view> markedHeadingTitle(std::string_view trimmedLine) {
    if (trimmedLine.empty() || trimmedLine.front() != '#') return std::nullopt;
    for (const std::string_view marker : {"### ", "#### ", "## "}) {
        if (startsWith(trimmedLine, marker)) return text::trimWhitespace(trimmedLine.substr(marker.size()));
    }
    return std::nullopt;
}

std::optional<std::string> boldHeaderTitle(std::string_view trimmedLine) {
    constexpr std::size_t minimumCharacters = 5;
    constexpr std::size_t maximumCharacters = 80;
    constexpr std::size_t maximumLeadCharacters = 4;
    constexpr std::string_view bold = "**";
    if (trimmedLine.empty()) return std::nullopt;
    // Nearly every line ends otherwise; that is cheaper to see than to count its characters.
    if (trimmedLine.back() != '*' && trimmedLine.back() != ':') return std::nullopt;
    std::string_view phrase = trimmedLine;
    if (text::hasSuffix(phrase, ":")) phrase.remove_suffix(1);
    if (!text::hasSuffix(phrase, bold)) return std::nullopt;

    const std::size_t start = phrase.find(bold);
    std::string_view inner = phrase.substr(start + bold.size());
    if (!text::hasSuffix(inner, bold)) return std::nullopt;
    inner = text::trimWhitespace(inner.substr(0, inner.size() - bold.size()));
    if (inner.empty() || inner.find('*') != std::string_view::npos) return std::nullopt;

    const std::string_view lead = text::trimWhitespace(phrase.substr(0, start));
    if (text::firstCharacters(lead, maximumLeadCharacters).size() < lead.size()) return std::nullopt;
    if (anyCharacter(lead, isLetterOrNumber)) return std::nullopt;
    if (text::firstCharacters(phrase, maximumCharacters).size() < phrase.size()) return std::nullopt;
    if (text::characterCount(phrase) < minimumCharacters) return std::nullopt;
    std::string title(lead);
    if (!title.empty()) title += ' ';
    title += inner;
    return title;
}

std::optional<std::string_view> cardText(std::string_view trimmedLine) {
    constexpr std::string_view bullet = "\u2022 ";
    if (trimmedLine.empty()) return std::nullopt;
    if (trimmedLine.front() == '-' && startsWith(trimmedLine, "- ")) {
        if (startsWith(trimmedLine, "- [")) return std::nullopt;
        return trimmedLine.substr(2);
    }
    if (trimmedLine.front() == bullet.front() && startsWith(trimmedLine, bullet))
        return trimmedLine.substr(bullet.size());
    return std::nullopt;
}

bool isRule(std::string_view trimmedLine) {
    return trimmedLine == "---";
}

bool isRecapTitle(std::string_view title) {
    return text::hasPrefix(title, "🌙") || text::containsIgnoringCase(title, "recap") ||
           text::containsIgnoringCase(title, "eod");
}

bool isActionItemsTitle(std::string_view title) {
    // No other letters fold to this much of the words, so most titles need no folding.
    if (containsIgnoringAsciiCase(title, "action item") && text::containsIgnoringCase(title, "action items"))
        return true;
    if (holdsLetterOfNoTag(title)) return false;
    const std::string letters = lettersOf(text::lowercased(title));
    return letters == "wrk" || letters == "prsnl";
}

std::vector<BriefingSection> sections(std::string_view markdown) {
    SectionBuilder builder(markdown);
    text::LineReader reader(markdown);
    for (std::string_view line; reader.next(line);) {
        const std::string_view trimmed = text::trimWhitespace(line);
        if (const auto marked = markedHeadingTitle(trimmed)) {
            builder.open(std::string(*marked));
        } else if (auto bold = boldHeaderTitle(trimmed)) {
            builder.open(*std::move(bold));
        } else if (!isRule(trimmed)) {
            builder.add(line, trimmed);
        }
    }
    return std::move(builder).finish();
}

std::optional<BriefingActionItem> actionItem(std::string_view line) {
    std::string_view rest = text::trimWhitespace(line);
    if (rest.empty() || (rest.front() != '-' && rest.front() != '[')) return std::nullopt;
    if (startsWith(rest, "- ")) rest = text::trimWhitespace(rest.substr(2));
    if (!startsWith(rest, "[")) return std::nullopt;
    const std::size_t end = rest.find(']');
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view mark = text::trimWhitespace(rest.substr(1, end - 1));
    const bool done = mark == "x" || mark == "X";
    if (!done && !mark.empty()) return std::nullopt;

    rest = text::trimWhitespace(rest.substr(end + 1));
    BriefingActionItem item;
    item.done = done;
    const auto take = [&](std::size_t size, std::string_view tag) {
        item.tag = tag;
        rest = text::trimWhitespace(rest.substr(size));
    };
    constexpr std::string_view briefcase = "\U0001F4BC";
    constexpr std::string_view house = "\U0001F3E0";
    if (text::hasPrefix(rest, briefcase)) {
        take(briefcase.size(), workTag);
    } else if (text::hasPrefix(rest, house)) {
        take(house.size(), personalTag);
    }
    for (const auto tag : {workTag, personalTag}) {
        if (!beginsWithWord(rest, tag)) continue;
        take(text::firstCharacters(rest, tag.size() + 1).size(), tag);
        break;
    }
    if (rest.empty()) return std::nullopt;
    item.text = rest;
    return item;
}

std::vector<BriefingActionItem> actionItems(std::string_view markdown) {
    std::vector<BriefingActionItem> items;
    text::LineReader reader(markdown);
    for (std::string_view line; reader.next(line);) {
        if (auto item = actionItem(line)) items.push_back(*std::move(item));
    }
    return items;
}

}  // namespace briefing
}  // namespace sunpane
