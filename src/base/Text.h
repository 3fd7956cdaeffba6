#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Unicode text in UTF-8. All functions are pure and may run on any thread; they expect valid UTF-8 (`isValidUtf8`).
///
/// A *character* is what a person sees as one, an extended grapheme cluster (Unicode Standard Annex 29).
namespace sunpane::text {

// Classes of code points.

/// General category Zs, or a tab.
bool isWhitespace(char32_t codePoint);
/// U+000A to U+000D, U+0085, U+2028 and U+2029.
bool isNewline(char32_t codePoint);
/// Whitespace, U+000A to U+000D, or U+0085.
bool isWhitespaceOrNewline(char32_t codePoint);
/// General categories L*, M* and N*.
bool isAlphanumeric(char32_t codePoint);

// Encoding.

bool isValidUtf8(std::string_view bytes);
/// Replaces what is not valid UTF-8 by U+FFFD.
std::string toValidUtf8(std::string_view bytes);

/// Takes the code point that starts at `position` and moves `position` past it.
char32_t nextCodePoint(std::string_view text, std::size_t& position);

// Trimming and splitting; the results point into `text`.

/// Trims whitespace where a code point at an end is not ASCII.
std::string_view trimUnicodeWhitespace(std::string_view text);
inline std::string_view trimWhitespace(std::string_view text) {
    const auto isAsciiSpace = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isAsciiSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isAsciiSpace(text.back()))
        text.remove_suffix(1);
    if (text.empty()) return text;
    // Both bytes of ASCII have the highest bit clear.
    return ((text.front() | text.back()) & 0x80) == 0 ? text : trimUnicodeWhitespace(text);
}
std::string_view trimWhitespaceAndNewlines(std::string_view text);

/// Walks the pieces between newline code points without copying; a CR LF pair therefore yields an empty line, and a
/// text always has at least one line. The text outlives the reader.
class LineReader {
public:
    explicit LineReader(std::string_view text) : text_(text) {}

    /// Moves to the next line, without its newline. False once the last one has been read; `line` is then unchanged.
    bool next(std::string_view& line);

private:
    std::string_view text_;
    std::size_t lineStart_ = 0;
    // The block of 64 bytes that is being searched, and which of its bytes may still begin a newline.
    std::size_t blockStart_ = 0;
    std::uint64_t candidates_ = 0;
    bool started_ = false;
    bool finished_ = false;
};

/// All lines of a text, as `LineReader` yields them.
std::vector<std::string_view> lines(std::string_view text);

/// `text` with every newline written as "\n".
std::string withPlainNewlines(std::string_view text);

// Characters.

std::size_t characterCount(std::string_view text);
/// The first `count` characters, or all when there are fewer.
std::string_view firstCharacters(std::string_view text, std::size_t count);
/// What follows the first `count` characters.
std::string_view dropFirstCharacters(std::string_view text, std::size_t count);
std::string_view dropLastCharacters(std::string_view text, std::size_t count);
/// Whether `text` begins with the characters of `prefix`; a combining mark after them makes another character.
bool hasPrefix(std::string_view text, std::string_view prefix);
bool hasSuffix(std::string_view text, std::string_view suffix);

// Case (Unicode default mapping, independent of locale).

std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);
/// Whether `text` contains `part`, compared by Unicode case folding.
bool containsIgnoringCase(std::string_view text, std::string_view part);

/// The runs of alphanumeric code points, in order; the results point into `text`.
std::vector<std::string_view> alphanumericRuns(std::string_view text);

/// `text` with every occurrence of `part`, left to right, replaced by `replacement`.
std::string replacingAll(std::string_view text, std::string_view part, std::string_view replacement);

/// A JSON text with DEL and the C1 controls in its strings escaped: JSON lets them stand as they are, but they would
/// act on a terminal that shows the text.
std::string withControlsEscaped(std::string_view json);

}  // namespace sunpane::text
