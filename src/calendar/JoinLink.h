#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/CalendarStore.h"

namespace sunpane {

/// Longer addresses are no join links.
inline constexpr std::size_t maximumLinkBytes = 8192;

/// The address of the first online meeting that `text` (valid UTF-8) links to; absent without one. Only links with
/// `https` to a known meeting service count; what their paths and queries leave unescaped is escaped. Runs at memory
/// speed on text without links. Any thread.
std::optional<std::string> joinURL(std::string_view text);

/// The same for an event: its URL, its location and its notes are looked at in this order.
std::optional<std::string> joinURL(const CalendarEvent& event);

/// Whether `text` is an address with `http` or `https` and a host, and nothing else. Any thread.
bool isWebAddress(std::string_view text);

}  // namespace sunpane
