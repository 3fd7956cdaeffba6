#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/Dates.h"

namespace sunpane::briefing {

/// Something in a briefing that will not show as its writer meant it.
struct Finding {
    /// Counted from 1, as editors do: CR LF ends one line.
    std::size_t line = 1;
    std::string message;
    friend bool operator==(const Finding&, const Finding&) = default;
};

/// A card beyond this many characters is a paragraph, not something to swipe.
inline constexpr std::size_t maximumCardCharacters = 600;

/// What is wrong with the file of this name, by line. `bytes` is its content; when that is not UTF-8, the only finding
/// says where. Messages quote nothing of the content. Pure; any thread.
std::vector<Finding> check(std::string_view name, std::string_view bytes, const LocalCalendar& calendar);

}  // namespace sunpane::briefing
