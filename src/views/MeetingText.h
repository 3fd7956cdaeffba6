#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Dates.h"
#include "base/Instant.h"
#include "calendar/MeetingWatcher.h"

/// What is shown of meetings and of the links that join them.
namespace sunpane::meeting_text {

/// Whether a meeting that starts at `start` is about to begin or may still be going on, so that joining it deserves
/// emphasis.
bool isImminent(Instant start, Instant now);

/// When a meeting takes place, such as "14:00–14:45 · in 12 min"; with its day when that is not today.
std::string timeLine(const Meeting& meeting, Instant now, const LocalCalendar& calendar);

/// A card's markdown without its " · [Join](address)", which a button shows instead.
std::string displayMarkdown(std::string_view markdown);

struct JoinInfo {
    std::string url;
    bool imminent = false;
    friend bool operator==(const JoinInfo&, const JoinInfo&) = default;
};

/// The meeting that a card links to; imminent by the first time of day in its text, taken as today's.
std::optional<JoinInfo> joinInfo(std::string_view markdown, Instant now, const LocalCalendar& calendar);

}  // namespace sunpane::meeting_text
