#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sunpane {

/// Texts longer than this many bytes are cut for display, with an ellipsis.
inline constexpr std::size_t maximumRenderedBytes = 8192;

/// A card's or an introduction's inline markdown as the toolkit's styled text: `**bold**`, `*italic*`, `***both***`,
/// the same with underscores, `` `code` `` and `[links](address)`. Marks nest; one without a partner stays as it was
/// typed, as does a character behind a backslash. Only addresses with `http`, `https` or `mailto` become links, of
/// others the text alone shows. Everything else is escaped, line ends are kept.
std::string rendered(std::string_view markdown);

/// The same for a title, where links are only text.
std::string renderedTitle(std::string_view markdown);

struct InlineLink {
    std::string label;
    std::string url;
    friend bool operator==(const InlineLink&, const InlineLink&) = default;
};

/// The links that `rendered` makes, in order, at most `maximumLinks`.
std::vector<InlineLink> linksOf(std::string_view markdown);
inline constexpr std::size_t maximumLinks = 50;

/// The same text without its marks, as a screen reader says it.
std::string plainText(std::string_view markdown);

}  // namespace sunpane
