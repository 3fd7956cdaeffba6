#include "core/briefing/ItemKey.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

#include "base/Text.h"
#include "core/briefing/Briefing.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace sunpane {
namespace {

constexpr char separator = '-';

// An ASCII letter in lower case, a digit as it is, any other byte as the separator.
constexpr std::array<char, 256> asciiKeyBytes = [] {
    std::array<char, 256> table{};
    table.fill(separator);
    for (int c = '0'; c <= '9'; ++c)
        table[static_cast<std::size_t>(c)] = static_cast<char>(c);
    for (int c = 'a'; c <= 'z'; ++c) {
        table[static_cast<std::size_t>(c)] = static_cast<char>(c);
        table[static_cast<std::size_t>(c - 'a' + 'A')] = static_cast<char>(c);
    }
    return table;
}();

constexpr char32_t capitalSigma = 0x3A3;     // its lower case depends on what follows it
constexpr char32_t capitalIWithDot = 0x130;  // the only letter whose lower case is two code points

/// Writes a key from left to right. Separators are written as soon as they are met, but never two in a row and never
/// first; one that ends the text is taken off at the end.
class KeyWriter {
public:
    /// Room for the key of any text without combining marks, and for what is written past its end to know where it is.
    static constexpr std::size_t capacity = 512;
    /// More than this is never written at a time.
    static constexpr std::size_t blockSize = 16;

    // Only what is written is ever read, so the rest of the buffer is left as it is.
    KeyWriter() { bytes_[0] = separator; }

    bool hasRoom() const { return size_ + blockSize <= capacity; }
    std::size_t size() const { return size_; }
    bool isAscii() const { return isAscii_; }

    void append(char byte) {
        bytes_[size_] = byte;
        size_ += byte != separator || bytes_[size_ - 1] != separator ? 1 : 0;
    }

    void appendAlphanumeric(char32_t codePoint) {
        auto offset = static_cast<std::int32_t>(size_);
        U8_APPEND_UNSAFE(reinterpret_cast<std::uint8_t*>(bytes_.data()), offset, static_cast<UChar32>(codePoint));
        size_ = static_cast<std::size_t>(offset);
        isAscii_ = isAscii_ && codePoint < 0x80;
    }

#if defined(__SSE2__)
    /// Takes `blockSize` ASCII bytes at once when no two separators meet in them. False: nothing was written.
    bool appendBlock(__m128i block) {
        const auto inRange = [](__m128i bytes, char first, char last) {
            const __m128i shifted = _mm_sub_epi8(bytes, _mm_set1_epi8(first));
            return _mm_cmpeq_epi8(_mm_min_epu8(shifted, _mm_set1_epi8(static_cast<char>(last - first))), shifted);
        };
        // Setting the bit that tells the cases apart moves no other ASCII byte onto a letter.
        const __m128i lowered = _mm_or_si128(block, _mm_set1_epi8(0x20));
        const __m128i letters = inRange(lowered, 'a', 'z');
        const __m128i digits = inRange(block, '0', '9');
        const __m128i kept = _mm_or_si128(letters, digits);
        const auto separators = static_cast<unsigned>(_mm_movemask_epi8(kept)) ^ 0xFFFFU;
        const unsigned follows = (separators << 1) | (bytes_[size_ - 1] == separator ? 1U : 0U);
        if ((separators & follows) != 0) return false;
        const __m128i values = _mm_or_si128(_mm_and_si128(letters, lowered), _mm_and_si128(digits, block));
        const __m128i result = _mm_or_si128(values, _mm_andnot_si128(kept, _mm_set1_epi8(separator)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes_.data() + size_), result);
        size_ += blockSize;
        return true;
    }
#endif

    std::string_view key() const {
        const std::size_t end = size_ > start && bytes_[size_ - 1] == separator ? size_ - 1 : size_;
        return std::string_view(bytes_.data() + start, end - start);
    }

private:
    // A separator in front of the key keeps a leading one from being written.
    static constexpr std::size_t start = 1;
    std::array<char, capacity + blockSize + U8_MAX_LENGTH> bytes_;
    std::size_t size_ = start;
    bool isAscii_ = true;
};

// What the key's characters need at most of the written ones: one more shows that the last is complete.
constexpr std::size_t enoughAscii = BriefingItem::maximumKeyCharacters + 2;

// Absent when `text` needs the general operations.
std::optional<std::string_view> writeKey(std::string_view text, KeyWriter& writer) {
    std::size_t position = 0;
    while (position < text.size() && !(writer.isAscii() && writer.size() > enoughAscii)) {
        if (!writer.hasRoom()) {
            const auto key = text::firstCharacters(writer.key(), BriefingItem::maximumKeyCharacters);
            if (key.size() < writer.key().size()) return key;
            return std::nullopt;  // more marks on its letters than there is room for
        }
#if defined(__SSE2__)
        if (text.size() - position >= KeyWriter::blockSize) {
            const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + position));
            if (_mm_movemask_epi8(block) == 0) {
                if (!writer.appendBlock(block)) {
                    for (std::size_t i = 0; i < KeyWriter::blockSize; ++i) {
                        writer.append(asciiKeyBytes[static_cast<unsigned char>(text[position + i])]);
                    }
                }
                position += KeyWriter::blockSize;
                continue;
            }
        }
#endif
        const auto byte = static_cast<unsigned char>(text[position]);
        if (byte < 0x80) {
            writer.append(asciiKeyBytes[byte]);
            ++position;
            continue;
        }
        const char32_t codePoint = text::nextCodePoint(text, position);
        if (codePoint == capitalSigma || codePoint == capitalIWithDot) return std::nullopt;
        const auto lowered = static_cast<char32_t>(u_tolower(static_cast<UChar32>(codePoint)));
        if (text::isAlphanumeric(lowered)) {
            writer.appendAlphanumeric(lowered);
        } else {
            writer.append(separator);
        }
    }
    const std::string_view key = writer.key();
    if (writer.isAscii()) return key.substr(0, BriefingItem::maximumKeyCharacters);
    return text::firstCharacters(key, BriefingItem::maximumKeyCharacters);
}

}  // namespace

std::size_t appendItemKey(std::string_view text, std::string& target) {
    KeyWriter writer;
    const std::size_t before = target.size();
    if (const auto key = writeKey(text, writer)) {
        target.append(*key);
    } else {
        target.append(itemKeyByUnicode(text));
    }
    return target.size() - before;
}

std::string itemKeyByUnicode(std::string_view text) {
    const std::string lowered = text::lowercased(text);
    std::string joined;
    for (const auto word : text::alphanumericRuns(lowered)) {
        if (!joined.empty()) joined += separator;
        joined += word;
    }
    joined.resize(text::firstCharacters(joined, BriefingItem::maximumKeyCharacters).size());
    return joined;
}

}  // namespace sunpane
