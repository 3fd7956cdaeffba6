#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sunpane {

/// A title or a name from another program is cut to this many bytes, far more than is ever shown.
inline constexpr std::size_t maximumReplyText = 4096;

/// More parts of one reply than this are not looked at; no script replies as many.
inline constexpr std::size_t maximumReplyParts = 16;

/// The parts of a script's reply; they point into it. At least one.
std::vector<std::string_view> splitReply(std::string_view reply);

/// The text, or as many of its whole code points as fit the bound. Expects valid UTF-8.
std::string boundedReplyText(std::string_view text);

}  // namespace sunpane
