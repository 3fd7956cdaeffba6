#include "base/Text.h"

#include <unicode/brkiter.h>
#include <unicode/casemap.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <bit>
#include <cassert>
#include <memory>
#include <optional>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace sunpane::text {
namespace {

// How many bytes stand before the first that is not ASCII.
std::size_t asciiLength(std::string_view text) {
    std::size_t position = 0;
#if defined(__SSE2__)
    for (; position + sizeof(__m128i) <= text.size(); position += sizeof(__m128i)) {
        const auto* block = reinterpret_cast<const __m128i*>(text.data() + position);
        const auto high = static_cast<unsigned>(_mm_movemask_epi8(_mm_loadu_si128(block)));
        if (high != 0) return position + static_cast<std::size_t>(std::countr_zero(high));
    }
#endif
    while (position < text.size() && static_cast<unsigned char>(text[position]) < 0x80) {
        ++position;
    }
    return position;
}

bool isAscii(std::string_view text) {
    return asciiLength(text) == text.size();
}

constexpr std::size_t blockSize = 64;

// Whether a byte is one of the ASCII newlines from `First` to U+000D, or may begin U+0085, U+2028 or U+2029.
template <char First>
bool mayBeginNewline(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return static_cast<unsigned char>(value - First) <= '\r' - First || value == 0xC2 || value == 0xE2;
}

// One bit for each byte of `text` from `start` on, at most `blockSize` of them, that may begin a newline; the first
// byte's bit is the lowest.
template <char First>
std::uint64_t newlineCandidates(std::string_view text, std::size_t start) {
    const std::string_view block = text.substr(start, blockSize);
    std::uint64_t mask = 0;
#if defined(__SSE2__)
    if (block.size() == blockSize) {
        for (std::size_t i = 0; i < blockSize; i += sizeof(__m128i)) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block.data() + i));
            const __m128i shifted = _mm_sub_epi8(bytes, _mm_set1_epi8(First));
            const __m128i ascii = _mm_cmpeq_epi8(_mm_min_epu8(shifted, _mm_set1_epi8('\r' - First)), shifted);
            const __m128i leads = _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(static_cast<char>(0xC2))),
                                               _mm_cmpeq_epi8(bytes, _mm_set1_epi8(static_cast<char>(0xE2))));
            const auto bits = static_cast<std::uint64_t>(_mm_movemask_epi8(_mm_or_si128(ascii, leads)));
            mask |= bits << i;
        }
        return mask;
    }
#endif
    for (std::size_t i = 0; i < block.size(); ++i)
        mask |= std::uint64_t{mayBeginNewline<First>(block[i])} << i;
    return mask;
}

// The length in bytes of the newline that starts at `position`, or 0 when none does.
std::size_t newlineLength(std::string_view text, std::size_t position) {
    const auto byteAt = [&](std::size_t offset) {
        return position + offset < text.size() ? static_cast<unsigned char>(text[position + offset]) : 0U;
    };
    const unsigned first = byteAt(0);
    if (first < 0x80) return 1;
    if (first == 0xC2) return byteAt(1) == 0x85 ? 2 : 0;
    return byteAt(1) == 0x80 && (byteAt(2) == 0xA8 || byteAt(2) == 0xA9) ? 3 : 0;
}

// Whether a character ends before `codePoint` when what stands before it is an ordinary ASCII letter or sign.
bool beginsCharacterAfterAscii(char32_t codePoint) {
    const auto value = u_getIntPropertyValue(static_cast<UChar32>(codePoint), UCHAR_GRAPHEME_CLUSTER_BREAK);
    return value != U_GCB_EXTEND && value != U_GCB_SPACING_MARK && value != U_GCB_ZWJ;
}

// In ASCII the only character of two code points is CR LF.
bool isPlainAscii(std::string_view text) {
    return isAscii(text) && text.find("\r\n") == std::string_view::npos;
}

// The first `count` characters as long as each is a code point: below the combining marks, only CR LF is a character of
// two. Absent when there are others among them, or behind the last.
std::optional<std::string_view> firstSimpleCharacters(std::string_view text, std::size_t count) {
    constexpr unsigned char firstMarkLead = 0xCC;
    std::size_t position = 0;
    for (std::size_t seen = 0; position < text.size(); ++seen) {
        const auto byte = static_cast<unsigned char>(text[position]);
        if (byte >= firstMarkLead || byte == '\r') return std::nullopt;
        if (seen == count) return text.substr(0, position);
        position += byte < 0x80 ? 1 : 2;
    }
    return text;
}

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
        // The analyser takes the end of the function for the end of the thread.
        return *iterator;  // NOLINT(clang-analyzer-cplusplus.NewDelete)
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
        i += asciiLength(bytes.substr(i));
        if (i == bytes.size()) break;
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

std::string_view trimUnicodeWhitespace(std::string_view text) {
    return trim(text, isWhitespace);
}

std::string_view trimWhitespaceAndNewlines(std::string_view text) {
    return trim(text, isWhitespaceOrNewline);
}

bool LineReader::next(std::string_view& line) {
    for (;;) {
        while (candidates_ != 0) {
            const std::size_t at = blockStart_ + static_cast<std::size_t>(std::countr_zero(candidates_));
            candidates_ &= candidates_ - 1;
            const std::size_t length = newlineLength(text_, at);
            if (length == 0) continue;
            line = text_.substr(lineStart_, at - lineStart_);
            lineStart_ = at + length;
            return true;
        }
        if (started_) blockStart_ += blockSize;
        started_ = true;
        if (blockStart_ >= text_.size()) break;
        candidates_ = newlineCandidates<'\n'>(text_, blockStart_);
    }
    if (finished_) return false;
    finished_ = true;
    line = text_.substr(lineStart_);
    return true;
}

std::string withPlainNewlines(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    std::size_t start = 0;
    for (std::size_t block = 0; block < text.size(); block += blockSize) {
        for (std::uint64_t mask = newlineCandidates<'\v'>(text, block); mask != 0; mask &= mask - 1) {
            const std::size_t at = block + static_cast<std::size_t>(std::countr_zero(mask));
            const std::size_t length = newlineLength(text, at);
            if (length == 0) continue;
            result.append(text.substr(start, at - start)).push_back('\n');
            start = at + length;
        }
    }
    result.append(text.substr(start));
    return result;
}

std::vector<std::string_view> lines(std::string_view text) {
    std::vector<std::string_view> result;
    LineReader reader(text);
    for (std::string_view line; reader.next(line);)
        result.push_back(line);
    return result;
}

std::size_t characterCount(std::string_view text) {
    if (isPlainAscii(text)) return text.size();
    CharacterBoundaries boundaries(text);
    std::size_t count = 0;
    boundaries.iterator().first();
    while (boundaries.iterator().next() != icu::BreakIterator::DONE)
        ++count;
    return count;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    if (count == 0) return text.substr(0, 0);
    if (text.size() <= count) return text;  // a character is at least a byte
    // One byte more than `count` shows whether a mark follows the last character.
    if (isPlainAscii(text.substr(0, count + 1))) return text.substr(0, count);
    if (const auto simple = firstSimpleCharacters(text, count)) return *simple;
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
    for (std::size_t i = 0; i < count && end != icu::BreakIterator::DONE; ++i)
        end = boundaries.iterator().previous();
    return end == icu::BreakIterator::DONE ? text.substr(0, 0) : text.substr(0, static_cast<std::size_t>(end));
}

bool hasPrefix(std::string_view text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    if (prefix.empty() || text.size() == prefix.size()) return true;
    const char last = prefix.back();
    const char next = text[prefix.size()];
    if (static_cast<unsigned char>(next) < 0x80) return !(last == '\r' && next == '\n');
    if (last >= ' ' && last < 0x7F) {
        std::size_t position = prefix.size();
        return beginsCharacterAfterAscii(nextCodePoint(text, position));
    }
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

std::string withControlsEscaped(std::string_view json) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    std::size_t start = 0;
    for (std::size_t at = 0; (at = json.find_first_of("\x7F\xC2", at)) != std::string::npos; ++at) {
        const bool isDelete = json[at] == '\x7F';
        const auto code = static_cast<unsigned char>(isDelete ? '\x7F' : json[at + 1]);
        if (code >= 0xA0) continue;
        result.append(json.substr(start, at - start)).append("\\u00").append({digits[code >> 4], digits[code & 0x0F]});
        start = at + (isDelete ? 1 : 2);
    }
    return result.append(json.substr(start));
}

}  // namespace sunpane::text
