#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sunpane::scripts {

struct Token {
    enum class Kind { word, text, integer, symbol, lineEnd };
    Kind kind = Kind::lineEnd;
    /// A word in lower case, since case means nothing in one; the characters of a text; or the symbol.
    std::string text;
    std::int64_t integer = 0;
    friend bool operator==(const Token&, const Token&) = default;
};

/// The tokens of a script, always with a line end last. Nothing when a character or a text is none of the language's.
std::optional<std::vector<Token>> tokenize(std::string_view source);

}  // namespace sunpane::scripts
