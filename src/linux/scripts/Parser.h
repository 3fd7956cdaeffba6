#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "linux/scripts/Tree.h"

namespace sunpane::scripts {

/// A longer source is not a script of ours.
inline constexpr std::size_t maximumSourceBytes = std::size_t{64} * 1024;
/// Blocks and expressions nest no deeper than this, which also bounds the stack of whoever walks the tree.
inline constexpr int maximumNesting = 64;

/// Compiles a script. Nothing when a word, a construct or the nesting is not the language's: such a script does
/// nothing at all. A name counts as a variable only after it was set.
std::optional<Script> parseScript(std::string_view source);

}  // namespace sunpane::scripts
