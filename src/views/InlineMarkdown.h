#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace sunpane {

/// Texts longer than this many bytes are cut for display, with an ellipsis.
inline constexpr std::size_t maximumRenderedBytes = 8192;

/// A card's or an introduction's inline markdown as the toolkit's styled text: `**bold**`, `*italic*`, `_italic_`,
/// `` `code` `` and the text of `[links](…)`. Marks without a partner stay as they were typed, everything else is
/// escaped, line ends are kept.
std::string rendered(std::string_view markdown);

/// The same text without its marks, as a screen reader says it.
std::string plainText(std::string_view markdown);

}  // namespace sunpane
