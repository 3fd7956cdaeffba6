#include "base/Text.h"

#include <unicode/brkiter.h>
#include <unicode/casemap.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cassert>
#include <memory>

namespace sunpane::text {
namespace {

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// In ASCII the only character of two code points is CR LF.
bool isPlainAscii(std::string_view text) { return isAscii(text) && text.find("\r\n") == std::string_view::npos; }

/// ICU's character boundaries over a UTF-8 text. The iterator is costly to make, so each thread keeps one.
class CharacterBoundaries {
public:
    explicit CharacterBoundaries(std::string_view text) : iterator_(threadIterator()) {
        UErrorCode status = U_ZERO_ERROR;
        utext_openUTF8(&utext_, text.data(), static_cast<std::int64_t>(text.size()), &status);
        iterator_.setText(&utext_, status);
        assert(U_SUCCESS(status));
    }
    ~CharacterBoundaries() { utext_close(&utext_); }
    CharacterBoundaries(const CharacterBoundaries&) = delete;
    CharacterBoundaries& operator=(const CharacterBoundaries&) = delete;

    icu::BreakIterator& iterator() { return iterator_; }

private:
    static icu::BreakIterator& threadIterator() {
        thread_local const std::unique_ptr<icu::BreakIterator> iterator = [] {
            UErrorCode status = U_ZERO_ERROR;
            return std::unique_ptr<icu::BreakIterator>(
                icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        }();
        assert(iterator);
        return *iterator;
    }

    UText utext_ = UTEXT_INITIALIZER;
    icu::BreakIterator& iterator_;
};

template <class Predicate>
std::string_view trim(std::string_view text, Predicate isTrimmed) {
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t next = start;
        if (!isTrimmed(nextCodePoint(text, next))) break;
        start = next;
    }
    std::size_t end = text.size();
    while (end > start) {
        // ICU counts in 32 bits; the last code point needs only the last four bytes.
        const std::size_t windowStart = std::max(start, end < 4 ? 0 : end - 4);
        const auto* window = reinterpret_cast<const std::uint8_t*>(text.data()) + windowStart;
        auto previous = static_cast<std::int32_t>(end - windowStart);
        UChar32 codePoint;
        U8_PREV_OR_FFFD(window, 0, previous, codePoint);
        if (!isTrimmed(static_cast<char32_t>(codePoint))) break;
        end = windowStart + static_cast<std::size_t>(previous);
    }
    return text.substr(start, end - start);
}

}  // namespace

bool isWhitespace(char32_t codePoint) {
    if (codePoint < 0x80) return codePoint == ' ' || codePoint == '\t';
    return u_charType(static_cast<UChar32>(codePoint)) == U_SPACE_SEPARATOR;
}

bool isNewline(char32_t codePoint) {
    return (codePoint >= 0x0A && codePoint <= 0x0D) || codePoint == 0x85 || codePoint == 0x2028 || codePoint == 0x2029;
}

bool isWhitespaceOrNewline(char32_t codePoint) {
    return (codePoint >= 0x0A && codePoint <= 0x0D) || codePoint == 0x85 || isWhitespace(codePoint);
}

bool isAlphanumeric(char32_t codePoint) {
    constexpr std::uint32_t mask = U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK;
    return (U_GET_GC_MASK(static_cast<UChar32>(codePoint)) & mask) != 0;
}

bool isValidUtf8(std::string_view bytes) {
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    for (std::size_t i = 0; i < bytes.size();) {
        if (data[i] < 0x80) {
            ++i;
            continue;
        }
        UChar32 codePoint;
        std::int32_t offset = 0;
        const auto left = static_cast<std::int32_t>(std::min<std::size_t>(bytes.size() - i, 4));
        U8_NEXT(data + i, offset, left, codePoint);
        if (codePoint < 0) return false;
        i += static_cast<std::size_t>(offset);
    }
    return true;
}

std::string toValidUtf8(std::string_view bytes) {
    std::string valid;
    valid.reserve(bytes.size());
    for (std::size_t position = 0; position < bytes.size();) {
        const std::size_t start = position;
        const char32_t codePoint = nextCodePoint(bytes, position);
        // A literal U+FFFD is three bytes long; anything that decodes to it otherwise was malformed.
        if (codePoint == 0xFFFD && bytes.substr(start, position - start) != "\xEF\xBF\xBD") {
            valid += "\xEF\xBF\xBD";
        } else {
            valid.append(bytes.substr(start, position - start));
        }
    }
    return valid;
}

char32_t nextCodePoint(std::string_view text, std::size_t& position) {
    assert(position < text.size());
    const auto* data = reinterpret_cast<const std::uint8_t*>(text.data()) + position;
    const auto left = static_cast<std::int32_t>(std::min<std::size_t>(text.size() - position, 4));
    std::int32_t offset = 0;
    UChar32 codePoint;
    U8_NEXT_OR_FFFD(data, offset, left, codePoint);
    position += static_cast<std::size_t>(offset);
    return static_cast<char32_t>(codePoint);
}

std::string_view trimWhitespace(std::string_view text) { return trim(text, isWhitespace); }

std::string_view trimWhitespaceAndNewlines(std::string_view text) { return trim(text, isWhitespaceOrNewline); }

std::vector<std::string_view> lines(std::string_view text) {
    std::vector<std::string_view> result;
    std::size_t start = 0;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t at = position;
        if (isNewline(nextCodePoint(text, position))) {
            result.push_back(text.substr(start, at - start));
            start = position;
        }
    }
    result.push_back(text.substr(start));
    return result;
}

std::size_t characterCount(std::string_view text) {
    if (isPlainAscii(text)) return text.size();
    CharacterBoundaries boundaries(text);
    std::size_t count = 0;
    boundaries.iterator().first();
    while (boundaries.iterator().next() != icu::BreakIterator::DONE) ++count;
    return count;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    if (count == 0) return text.substr(0, 0);
    if (text.size() <= count) return text;  // a character is at least a byte
    // One byte more than `count` shows whether a mark follows the last character.
    if (isPlainAscii(text.substr(0, count + 1))) return text.substr(0, count);
    CharacterBoundaries boundaries(text);
    boundaries.iterator().first();
    const std::int32_t end = boundaries.iterator().next(static_cast<std::int32_t>(count));
    return end == icu::BreakIterator::DONE ? text : text.substr(0, static_cast<std::size_t>(end));
}

std::string_view dropFirstCharacters(std::string_view text, std::size_t count) {
    return text.substr(firstCharacters(text, count).size());
}

std::string_view dropLastCharacters(std::string_view text, std::size_t count) {
    if (count >= text.size()) return text.substr(0, 0);
    if (isPlainAscii(text)) return text.substr(0, text.size() - count);
    CharacterBoundaries boundaries(text);
    std::int32_t end = boundaries.iterator().last();
    for (std::size_t i = 0; i < count && end != icu::BreakIterator::DONE; ++i) end = boundaries.iterator().previous();
    return end == icu::BreakIterator::DONE ? text.substr(0, 0) : text.substr(0, static_cast<std::size_t>(end));
}

bool hasPrefix(std::string_view text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    if (prefix.empty() || text.size() == prefix.size()) return true;
    const char last = prefix.back();
    const char next = text[prefix.size()];
    if (static_cast<unsigned char>(next) < 0x80) return !(last == '\r' && next == '\n');
    // Boundaries depend on what surrounds them only within a few code points, and `prefix` is short.
    CharacterBoundaries boundaries(text);
    return boundaries.iterator().isBoundary(static_cast<std::int32_t>(prefix.size())) != 0;
}

bool hasSuffix(std::string_view text, std::string_view suffix) {
    if (!text.ends_with(suffix)) return false;
    if (suffix.empty() || text.size() == suffix.size()) return true;
    const std::size_t at = text.size() - suffix.size();
    const char previous = text[at - 1];
    if (static_cast<unsigned char>(previous) < 0x80) return !(previous == '\r' && suffix.front() == '\n');
    CharacterBoundaries boundaries(text);
    return boundaries.iterator().isBoundary(static_cast<std::int32_t>(at)) != 0;
}

std::string lowercased(std::string_view text) {
    std::string result;
    if (isAscii(text)) {
        result.assign(text);
        for (char& c : result) {
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        }
        return result;
    }
    UErrorCode status = U_ZERO_ERROR;
    icu::StringByteSink<std::string> sink(&result);
    icu::CaseMap::utf8ToLower("", 0, icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())), sink,
                              nullptr, status);
    return result;
}

std::string uppercased(std::string_view text) {
    std::string result;
    UErrorCode status = U_ZERO_ERROR;
    icu::StringByteSink<std::string> sink(&result);
    icu::CaseMap::utf8ToUpper("", 0, icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())), sink,
                              nullptr, status);
    return result;
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    const auto folded = [](std::string_view original) {
        std::string result;
        UErrorCode status = U_ZERO_ERROR;
        icu::StringByteSink<std::string> sink(&result);
        icu::CaseMap::utf8Fold(0, icu::StringPiece(original.data(), static_cast<std::int32_t>(original.size())), sink,
                               nullptr, status);
        return result;
    };
    return folded(text).find(folded(part)) != std::string::npos;
}

std::vector<std::string_view> alphanumericRuns(std::string_view text) {
    std::vector<std::string_view> runs;
    std::size_t start = std::string_view::npos;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t at = position;
        if (isAlphanumeric(nextCodePoint(text, position))) {
            if (start == std::string_view::npos) start = at;
        } else if (start != std::string_view::npos) {
            runs.push_back(text.substr(start, at - start));
            start = std::string_view::npos;
        }
    }
    if (start != std::string_view::npos) runs.push_back(text.substr(start));
    return runs;
}

std::string replacingAll(std::string_view text, std::string_view part, std::string_view replacement) {
    assert(!part.empty());
    std::string result;
    result.reserve(text.size());
    std::size_t start = 0;
    for (std::size_t found; (found = text.find(part, start)) != std::string_view::npos; start = found + part.size()) {
        result.append(text.substr(start, found - start));
        result.append(replacement);
    }
    result.append(text.substr(start));
    return result;
}

}  // namespace sunpane::text
