#include "core/briefing/ItemKey.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <bit>
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

/// Sixteen bytes on their way into a key: letters in lower case, digits, and the separator for all other ASCII.
class KeyBlock {
public:
    static constexpr std::size_t size = 16;

    explicit KeyBlock(const char* bytes);

    /// Writes the bytes from `first` on to `target`, which has room for `size`; what it writes beyond them means
    /// nothing.
    void store(unsigned first, char* target) const { std::memcpy(target, bytes_.data() + first, size); }

    /// How many bytes stand before the first that is not ASCII.
    std::size_t asciiCount = size;
    /// A bit for each separator, the first byte's lowest.
    unsigned separators = 0;

private:
    // As much again behind the block, so that every store copies the same number of bytes.
    std::array<char, 2 * size> bytes_{};
};

#if defined(__SSE2__)
KeyBlock::KeyBlock(const char* bytes) {
    const auto inRange = [](__m128i values, char first, char last) {
        const __m128i shifted = _mm_sub_epi8(values, _mm_set1_epi8(first));
        return _mm_cmpeq_epi8(_mm_min_epu8(shifted, _mm_set1_epi8(static_cast<char>(last - first))), shifted);
    };
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    asciiCount = static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(_mm_movemask_epi8(block)) | 0x10000U));
    // Setting the bit that tells the cases apart moves no other ASCII byte onto a letter.
    const __m128i lowered = _mm_or_si128(block, _mm_set1_epi8(0x20));
    const __m128i letters = inRange(lowered, 'a', 'z');
    const __m128i digits = inRange(block, '0', '9');
    const __m128i kept = _mm_or_si128(letters, digits);
    separators = static_cast<unsigned>(_mm_movemask_epi8(kept)) ^ 0xFFFFU;
    const __m128i values = _mm_or_si128(_mm_and_si128(letters, lowered), _mm_and_si128(digits, block));
    const __m128i result = _mm_or_si128(values, _mm_andnot_si128(kept, _mm_set1_epi8(separator)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes_.data()), result);
}
#else
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

KeyBlock::KeyBlock(const char* bytes) {
    for (std::size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte >= 0x80) asciiCount = std::min(asciiCount, i);
        const char value = asciiKeyBytes[byte];
        if (value == separator) separators |= 1U << i;
        bytes_[i] = value;
    }
}
#endif

// The dashes, quotation marks and spaces of written text, among which there is no letter, mark or number.
constexpr char32_t firstPunctuation = 0x2000;
constexpr char32_t lastPunctuation = 0x206F;
constexpr char32_t capitalSigma = 0x3A3;     // its lower case depends on what follows it
constexpr char32_t capitalIWithDot = 0x130;  // the only letter whose lower case is two code points

/// Writes a key from left to right. Separators are written as soon as they are met, but never two in a row and never
/// first; one that ends the text is taken off at the end.
class KeyWriter {
public:
    /// Room for the key of any text without combining marks, and for what is written past its end to know where it is.
    static constexpr std::size_t capacity = 512;
    /// More than this is never written at a time.
    static constexpr std::size_t blockSize = KeyBlock::size;

    // Only what is written is ever read, so the rest of the buffer is left as it is.
    KeyWriter() { bytes_[0] = separator; }

    bool hasRoom() const { return size_ + blockSize <= capacity; }
    /// Whether every code point that was written is a character of its own.
    bool isSimple() const { return isSimple_; }
    std::size_t codePointCount() const { return size_ - start - continuationBytes_; }

    void appendSeparator() {
        bytes_[size_] = separator;
        size_ += bytes_[size_ - 1] != separator ? 1 : 0;
    }

    void appendAlphanumeric(char32_t codePoint) {
        constexpr char32_t firstCombiningMark = 0x300;
        auto offset = static_cast<std::int32_t>(size_);
        U8_APPEND_UNSAFE(reinterpret_cast<std::uint8_t*>(bytes_.data()), offset, static_cast<UChar32>(codePoint));
        continuationBytes_ += static_cast<std::size_t>(offset) - size_ - 1;
        size_ = static_cast<std::size_t>(offset);
        isSimple_ = isSimple_ && codePoint < firstCombiningMark;
    }

    /// Takes what is ASCII at the start of `text`, at most `blockSize` bytes of it, and returns how many that were.
    std::size_t appendAscii(std::string_view text) {
        std::array<char, blockSize> copy{};
        const char* bytes = text.data();
        std::size_t count = blockSize;
        if (text.size() < blockSize) {
            std::memcpy(copy.data(), bytes, text.size());
            bytes = copy.data();
            count = text.size();
        }
        const KeyBlock block(bytes);
        count = std::min(count, block.asciiCount);
        const unsigned all = (1U << count) - 1;
        const unsigned behindSeparator = (block.separators << 1) | (bytes_[size_ - 1] == separator ? 1U : 0U);
        // Where two separators meet, only the first stays, so that what is kept falls into a few runs.
        unsigned kept = all & ~(block.separators & behindSeparator);
        unsigned skipped = 0;
        while (kept != 0) {
            const auto gap = static_cast<unsigned>(std::countr_zero(kept));
            const auto run = static_cast<unsigned>(std::countr_one(kept >> gap));
            skipped += gap;
            block.store(skipped, bytes_.data() + size_);
            size_ += run;
            skipped += run;
            kept >>= gap + run;
        }
        return count;
    }

    std::string_view key() const {
        const std::size_t end = size_ > start && bytes_[size_ - 1] == separator ? size_ - 1 : size_;
        return std::string_view(bytes_.data() + start, end - start);
    }

    /// The key cut to its first `count` code points, when at least as many were written.
    std::string_view firstCodePoints(std::size_t count) const {
        const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
        // Seldom is more than a block written in excess, so counting from the end is shorter.
        std::size_t end = size_;
        for (std::size_t excess = codePointCount() - count; excess > 0; --excess) {
            while (isContinuation(bytes_[--end])) {
            }
        }
        return std::string_view(bytes_.data() + start, end - start);
    }

private:
    // A separator in front of the key keeps a leading one from being written.
    static constexpr std::size_t start = 1;
    std::array<char, capacity + blockSize + U8_MAX_LENGTH> bytes_;
    std::size_t size_ = start;
    std::size_t continuationBytes_ = 0;
    bool isSimple_ = true;
};

// Enough to cut a key of simple characters: one more than it keeps, and a separator that may yet be taken off.
constexpr std::size_t enoughCodePoints = BriefingItem::maximumKeyCharacters + 2;

// Absent when `text` needs the general operations.
std::optional<std::string_view> writeKey(std::string_view text, KeyWriter& writer) {
    std::size_t position = 0;
    while (position < text.size() && !(writer.isSimple() && writer.codePointCount() >= enoughCodePoints)) {
        if (!writer.hasRoom()) {
            const auto key = text::firstCharacters(writer.key(), BriefingItem::maximumKeyCharacters);
            if (key.size() < writer.key().size()) return key;
            return std::nullopt;  // more marks on its letters than there is room for
        }
        position += writer.appendAscii(text.substr(position));
        if (position == text.size() || static_cast<unsigned char>(text[position]) < 0x80) continue;
        const char32_t codePoint = text::nextCodePoint(text, position);
        if (codePoint >= firstPunctuation && codePoint <= lastPunctuation) {
            writer.appendSeparator();
            continue;
        }
        if (codePoint == capitalSigma || codePoint == capitalIWithDot) return std::nullopt;
        const auto lowered = static_cast<char32_t>(u_tolower(static_cast<UChar32>(codePoint)));
        if (text::isAlphanumeric(lowered)) {
            writer.appendAlphanumeric(lowered);
        } else {
            writer.appendSeparator();
        }
    }
    const std::string_view key = writer.key();
    if (writer.codePointCount() <= BriefingItem::maximumKeyCharacters) return key;
    if (writer.isSimple()) return writer.firstCodePoints(BriefingItem::maximumKeyCharacters);
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
