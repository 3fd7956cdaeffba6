#include "core/DateWords.h"

#include <unicode/datefmt.h>
#include <unicode/reldatefmt.h>
#include <unicode/smpdtfmt.h>

#include <array>
#include <memory>

#include "base/Dates.h"
#include "base/Text.h"

namespace sunpane::date_words {
namespace {

constexpr std::size_t mostDigits = 8;

bool isDigit(char32_t codePoint) {
    return codePoint >= U'0' && codePoint <= U'9';
}

bool isLetter(char32_t codePoint) {
    return text::isAlphanumeric(codePoint) && !isDigit(codePoint);
}

struct EnglishWord {
    std::string_view word;
    Meaning meaning;
};
using enum Meaning::Kind;
constexpr std::array english{
    EnglishWord{"sunday", {weekday, 1}},      EnglishWord{"sun", {weekday, 1, true}},
    EnglishWord{"monday", {weekday, 2}},      EnglishWord{"mon", {weekday, 2, true}},
    EnglishWord{"tuesday", {weekday, 3}},     EnglishWord{"tue", {weekday, 3}},
    EnglishWord{"tues", {weekday, 3}},        EnglishWord{"wednesday", {weekday, 4}},
    EnglishWord{"wed", {weekday, 4, true}},   EnglishWord{"thursday", {weekday, 5}},
    EnglishWord{"thu", {weekday, 5}},         EnglishWord{"thur", {weekday, 5}},
    EnglishWord{"thurs", {weekday, 5}},       EnglishWord{"friday", {weekday, 6}},
    EnglishWord{"fri", {weekday, 6}},         EnglishWord{"saturday", {weekday, 7}},
    EnglishWord{"sat", {weekday, 7, true}},   EnglishWord{"january", {month, 1}},
    EnglishWord{"jan", {month, 1}},           EnglishWord{"february", {month, 2}},
    EnglishWord{"feb", {month, 2}},           EnglishWord{"march", {month, 3, true}},
    EnglishWord{"mar", {month, 3, true}},     EnglishWord{"april", {month, 4}},
    EnglishWord{"apr", {month, 4}},           EnglishWord{"may", {month, 5, true}},
    EnglishWord{"june", {month, 6}},          EnglishWord{"jun", {month, 6}},
    EnglishWord{"july", {month, 7}},          EnglishWord{"jul", {month, 7}},
    EnglishWord{"august", {month, 8}},        EnglishWord{"aug", {month, 8}},
    EnglishWord{"september", {month, 9}},     EnglishWord{"sept", {month, 9}},
    EnglishWord{"sep", {month, 9}},           EnglishWord{"october", {month, 10}},
    EnglishWord{"oct", {month, 10}},          EnglishWord{"november", {month, 11}},
    EnglishWord{"nov", {month, 11}},          EnglishWord{"december", {month, 12}},
    EnglishWord{"dec", {month, 12}},          EnglishWord{"today", {relativeDay, 0}},
    EnglishWord{"tonight", {relativeDay, 0}}, EnglishWord{"tomorrow", {relativeDay, 1}},
    EnglishWord{"tmrw", {relativeDay, 1}},    EnglishWord{"yesterday", {relativeDay, -1}},
};

bool monthComesFirstIn(const icu::Locale& locale) {
    const std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateInstance(icu::DateFormat::kShort, locale));
    const auto* simple = dynamic_cast<const icu::SimpleDateFormat*>(format.get());
    if (simple == nullptr) return false;
    icu::UnicodeString pattern;
    simple->toPattern(pattern);
    return pattern.indexOf(u'M') < pattern.indexOf(u'd');
}

}  // namespace

std::vector<Token> tokens(std::string_view input) {
    std::vector<Token> result;
    bool followsSpace = true;
    for (std::size_t at = 0; at < input.size();) {
        const std::size_t start = at;
        const char32_t first = text::nextCodePoint(input, at);
        if (text::isWhitespaceOrNewline(first)) {
            followsSpace = true;
            continue;
        }
        Token token;
        token.followsSpace = followsSpace;
        followsSpace = false;
        const bool isNumber = isDigit(first);
        if (isNumber || isLetter(first)) {
            for (std::size_t next = at; next < input.size(); at = next) {
                const char32_t codePoint = text::nextCodePoint(input, next);
                if (isNumber ? !isDigit(codePoint) : !isLetter(codePoint)) break;
            }
        }
        const std::string_view piece = input.substr(start, at - start);
        if (isNumber) {
            token.kind = Token::Kind::number;
            token.text = piece;
            if (piece.size() <= mostDigits) token.value = std::stoi(token.text);
        } else if (isLetter(first)) {
            token.kind = Token::Kind::word;
            token.text = text::lowercased(piece);
            token.isCapitalised = token.text != piece;
        } else {
            token.kind = Token::Kind::sign;
            token.text = piece;
        }
        result.push_back(std::move(token));
    }
    return result;
}

Vocabulary::Vocabulary(std::string_view locale) : locale_(locale) {
    for (const auto& [word, meaning] : english)
        words_.emplace(word, meaning);
    const LocalCalendar calendar("UTC", locale);
    const Instant sunday = calendar.instant({{2026, 11, 22}, 12, 0, 0});
    for (int day = 0; day < 7; ++day) {
        const Instant instant = calendar.addingDays(sunday, day);
        for (const std::string_view pattern : {"EEEE", "cccc"})
            addLocal(calendar.format(instant, pattern), {weekday, day + 1});
        // Short names are everyday words in many languages.
        for (const std::string_view pattern : {"EEE", "ccc"})
            addLocal(calendar.format(instant, pattern), {weekday, day + 1, true});
    }
    for (int number = 1; number <= 12; ++number) {
        const Instant instant = calendar.instant({{2026, number, 15}, 12, 0, 0});
        for (const std::string_view pattern : {"MMMM", "LLLL", "MMM", "LLL"})
            addLocal(calendar.format(instant, pattern), {month, number});
    }
    const icu::Locale icuLocale(locale_.c_str());
    monthComesFirst_ = monthComesFirstIn(icuLocale);
    UErrorCode status = U_ZERO_ERROR;
    const icu::RelativeDateTimeFormatter relative(icuLocale, status);
    constexpr std::array days{std::pair{UDAT_DIRECTION_LAST, -1}, std::pair{UDAT_DIRECTION_THIS, 0},
                              std::pair{UDAT_DIRECTION_NEXT, 1}, std::pair{UDAT_DIRECTION_NEXT_2, 2}};
    for (const auto& [direction, value] : days) {
        icu::UnicodeString name;
        if (U_SUCCESS(status)) relative.format(direction, UDAT_ABSOLUTE_DAY, name, status);
        std::string utf8;
        addLocal(name.toUTF8String(utf8), {relativeDay, value});
    }
}

void Vocabulary::addLocal(std::string_view name, Meaning meaning) {
    const auto pieces = tokens(name);
    // A full stop may end a short name. Names of several words, or of none, are left out.
    if (pieces.empty() || !pieces.front().isWord() || pieces.size() > 2) return;
    if (pieces.size() == 2 && !pieces.back().is(".")) return;
    const auto [first, last] = words_.equal_range(pieces.front().text);
    for (auto known = first; known != last; ++known) {
        if (known->second.kind == meaning.kind) return;
    }
    words_.emplace(pieces.front().text, meaning);
}

std::optional<Meaning> Vocabulary::find(const Token& word, Meaning::Kind kind) const {
    if (!word.isWord()) return std::nullopt;
    const auto [first, last] = words_.equal_range(word.text);
    for (auto known = first; known != last; ++known) {
        if (known->second.kind == kind) return known->second;
    }
    return std::nullopt;
}

std::optional<Unit> unitOf(const Token& word) {
    struct Named {
        std::string_view name;
        Unit unit;
    };
    constexpr Unit minute{60, 0, 0};
    constexpr Unit hour{3600, 0, 0};
    constexpr Unit day{0, 1, 0};
    constexpr Unit week{0, 7, 0};
    constexpr Unit month{0, 0, 1};
    static constexpr std::array units{Named{"minute", minute}, Named{"minutes", minute}, Named{"min", minute},
                                      Named{"mins", minute},   Named{"hour", hour},      Named{"hours", hour},
                                      Named{"h", hour},        Named{"hr", hour},        Named{"hrs", hour},
                                      Named{"day", day},       Named{"days", day},       Named{"week", week},
                                      Named{"weeks", week},    Named{"month", month},    Named{"months", month}};
    if (!word.isWord()) return std::nullopt;
    for (const auto& [name, unit] : units) {
        if (word.text == name) return unit;
    }
    return std::nullopt;
}

std::optional<int> hourOfPartOfDay(const Token& word) {
    static constexpr std::array parts{
        std::pair{std::string_view("morning"), 9},    std::pair{std::string_view("noon"), 12},
        std::pair{std::string_view("midday"), 12},    std::pair{std::string_view("lunchtime"), 12},
        std::pair{std::string_view("afternoon"), 15}, std::pair{std::string_view("evening"), 19},
        std::pair{std::string_view("night"), 20},     std::pair{std::string_view("tonight"), 20}};
    if (!word.isWord()) return std::nullopt;
    for (const auto& [name, hour] : parts) {
        if (word.text == name) return hour;
    }
    return std::nullopt;
}

}  // namespace sunpane::date_words
