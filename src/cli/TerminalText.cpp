#include "cli/TerminalText.h"

#include <unicode/uchar.h>

#include <array>
#include <cstdio>

#include "base/Text.h"

namespace sunpane::cli {
namespace {

constexpr std::string_view boldOn = "\x1B[1m";
constexpr std::string_view boldOff = "\x1B[22m";

// Controls, and the marks that embed, override or isolate a direction of writing.
bool isUnsafe(char32_t codePoint) {
    return u_charType(static_cast<UChar32>(codePoint)) == U_CONTROL_CHAR ||
           (codePoint >= 0x202A && codePoint <= 0x202E) || (codePoint >= 0x2066 && codePoint <= 0x2069) ||
           codePoint == 0x2028 || codePoint == 0x2029;
}

template <class Replacement>
std::string replacingUnsafe(std::string_view text, Replacement replacement) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t start = position;
        const char32_t codePoint = text::nextCodePoint(text, position);
        const std::string_view bytes = text.substr(start, position - start);
        if (isUnsafe(codePoint)) {
            result += replacement(bytes);
        } else {
            result += bytes;
        }
    }
    return result;
}

}  // namespace

std::string printable(std::string_view text) {
    return replacingUnsafe(text, [](std::string_view bytes) { return bytes == "\t" ? " " : "\uFFFD"; });
}

std::string escapedName(std::string_view name) {
    return replacingUnsafe(text::toValidUtf8(name), [](std::string_view bytes) {
        if (bytes == "\n") return std::string("\\n");
        std::string escaped;
        for (const char byte : bytes) {
            std::array<char, 5> digits{};
            std::snprintf(digits.data(), digits.size(), "\\x%02X", static_cast<unsigned char>(byte));
            escaped += digits.data();
        }
        return escaped;
    });
}

std::string renderedMarkdown(std::string_view markdown, bool onTerminal) {
    constexpr std::string_view mark = "**";
    const std::string plain = text::replacingAll(printable(markdown), "`", "");
    std::string result;
    std::size_t start = 0;
    for (;;) {
        const std::size_t open = plain.find(mark, start);
        const std::size_t close = open == std::string::npos ? open : plain.find(mark, open + mark.size());
        if (close == std::string::npos) break;
        result.append(plain, start, open - start);
        const std::size_t phrase = open + mark.size();
        result += bold(std::string_view(plain).substr(phrase, close - phrase), onTerminal);
        start = close + mark.size();
    }
    return result.append(plain, start);
}

std::string bold(std::string_view text, bool onTerminal) {
    if (!onTerminal || text.empty()) return std::string(text);
    return std::string(boldOn).append(text).append(boldOff);
}

}  // namespace sunpane::cli
