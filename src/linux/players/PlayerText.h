#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace sunpane {

/// A title, a name or an address from another program is cut to this many bytes, far more than is ever shown.
inline constexpr std::size_t maximumPlayerText = 4096;

/// What another program says, made fit for a script's reply: valid UTF-8, cut to `maximumBytes`, with spaces in place
/// of control characters and line ends. Replies join their fields with three bars, so three in a row become two.
std::string playerText(std::string_view text, std::size_t maximumBytes = maximumPlayerText);

}  // namespace sunpane
