#pragma once

#include <string>
#include <string_view>

namespace sunpane::cli {

/// `text` on one line, safe to write to a terminal: no control character and no character that turns the direction of
/// what follows reaches it. Expects valid UTF-8.
std::string printable(std::string_view text);

/// The same for a name that may be any bytes, with every such character spelled out, as in "\x1B" and "\n", so that no
/// two names look alike.
std::string escapedName(std::string_view name);

/// A card's or an introduction's markdown for reading: `printable`, with the marks of bold phrases and code taken off,
/// and, on a terminal, the bold phrases in bold.
std::string renderedMarkdown(std::string_view markdown, bool onTerminal);

/// `text` in bold when on a terminal. Expects printable text.
std::string bold(std::string_view text, bool onTerminal);

}  // namespace sunpane::cli
