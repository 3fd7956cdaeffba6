#include "linux/players/PlayerText.h"

#include "base/Text.h"

namespace sunpane {
namespace {

bool isControl(char32_t codePoint) {
    return codePoint < 0x20 || (codePoint >= 0x7f && codePoint < 0xa0);
}

}  // namespace

std::string playerText(std::string_view text, std::size_t maximumBytes) {
    // What is cut within a code point ends in one replacement character at most.
    const std::string valid = text::toValidUtf8(text.substr(0, maximumBytes));
    std::string result;
    result.reserve(valid.size());
    int bars = 0;
    for (std::size_t position = 0; position < valid.size();) {
        const std::size_t start = position;
        const char32_t codePoint = text::nextCodePoint(valid, position);
        bars = codePoint == U'|' ? bars + 1 : 0;
        if (bars > 2) continue;
        if (isControl(codePoint) || text::isNewline(codePoint)) {
            result += ' ';
        } else {
            result.append(valid, start, position - start);
        }
    }
    return result;
}

}  // namespace sunpane
