#include "views/MeetingText.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/Text.h"
#include "calendar/JoinLink.h"

namespace sunpane::meeting_text {
namespace {

constexpr std::string_view dot = "\u00B7";
constexpr std::string_view separator = " \u00B7 ";
constexpr std::string_view enDash = "\u2013";

struct TimeOfDay {
    int hour;
    int minute;
};

// The first one or two digits, colon, two digits of `text`. Absent without such, or when it is no time.
std::optional<TimeOfDay> firstTimeOfDay(std::string_view text) {
    const auto digitAt = [](const std::vector<char32_t>& characters, std::size_t index) {
        return index < characters.size() ? u_charDigitValue(static_cast<UChar32>(characters[index])) : -1;
    };
    std::vector<char32_t> characters;
    characters.reserve(text.size());
    for (std::size_t position = 0; position < text.size();)
        characters.push_back(text::nextCodePoint(text, position));
    for (std::size_t colon = 1; colon + 2 < characters.size(); ++colon) {
        if (characters[colon] != U':') continue;
        const int hourOnes = digitAt(characters, colon - 1);
        const int minuteTens = digitAt(characters, colon + 1);
        const int minuteOnes = digitAt(characters, colon + 2);
        if (hourOnes < 0 || minuteTens < 0 || minuteOnes < 0) continue;
        const int hourTens = colon >= 2 ? std::max(0, digitAt(characters, colon - 2)) : 0;
        const TimeOfDay time{hourTens * 10 + hourOnes, minuteTens * 10 + minuteOnes};
        if (time.hour > 23 || time.minute > 59) return std::nullopt;
        return time;
    }
    return std::nullopt;
}

// The length of " · [Join](address)" at the start of `text`, its spaces around the dot optional; 0 when there is none.
std::size_t joinMarkupLength(std::string_view text) {
    constexpr std::string_view label = "[Join](";
    const std::size_t whole = text.size();
    if (text.starts_with(' ')) text.remove_prefix(1);
    if (!text.starts_with(dot)) return 0;
    text.remove_prefix(dot.size());
    if (text.starts_with(' ')) text.remove_prefix(1);
    if (!text.starts_with(label)) return 0;
    text.remove_prefix(label.size());
    const std::size_t end = text.find(')');
    if (end == std::string_view::npos || end == 0) return 0;
    return whole - text.size() + end + 1;
}

// How far off a meeting is, in words: "in 12 min", "now"; empty when it is more than a day away.
std::string distance(const Meeting& meeting, Instant now) {
    constexpr Seconds minute = 60;
    constexpr Seconds hour = 3600;
    constexpr Seconds day = 86400;
    const Seconds left = meeting.start - now;
    if (left <= 0) return "now";
    if (left >= day) return {};
    const auto minutes = static_cast<int>(std::ceil(left / minute));
    if (left <= hour) return "in " + std::to_string(minutes) + " min";
    std::string text = "in " + std::to_string(minutes / 60) + " h";
    if (minutes % 60 != 0) text += " " + std::to_string(minutes % 60) + " min";
    return text;
}

}  // namespace

bool isImminent(Instant start, Instant now) {
    constexpr Seconds longestPast = 7200;
    constexpr Seconds farthestAhead = 900;
    const Seconds ahead = start - now;
    return ahead > -longestPast && ahead < farthestAhead;
}

std::string timeLine(const Meeting& meeting, Instant now, const LocalCalendar& calendar) {
    std::string line;
    if (calendar.isSameDay(meeting.start, calendar.addingDays(now, 1))) {
        line = "Tomorrow ";
    } else if (!calendar.isSameDay(meeting.start, now)) {
        line = calendar.format(meeting.start, "EEE d MMM") + " ";
    }
    line += calendar.format(meeting.start, "HH:mm");
    line += enDash;
    line += calendar.format(meeting.end, "HH:mm");
    if (const std::string far = distance(meeting, now); !far.empty()) {
        line += separator;
        line += far;
    }
    return line;
}

std::string displayMarkdown(std::string_view markdown) {
    std::string text;
    text.reserve(markdown.size());
    const std::size_t lastEnd = markdown.rfind(')');
    const char* const end = markdown.data() + (lastEnd == std::string_view::npos ? 0 : lastEnd);
    while (!markdown.empty()) {
        std::size_t length = 0;
        // Behind the last bracket there is no end to search for.
        const bool mayBegin = markdown.front() == ' ' || markdown.front() == dot.front();
        if (mayBegin && markdown.data() < end) length = joinMarkupLength(markdown);
        if (length == 0) {
            text += markdown.front();
            length = 1;
        }
        markdown.remove_prefix(length);
    }
    return text;
}

std::optional<JoinInfo> joinInfo(std::string_view markdown, Instant now, const LocalCalendar& calendar) {
    auto url = joinURL(markdown);
    if (!url) return std::nullopt;
    JoinInfo info{*std::move(url), false};
    if (const auto time = firstTimeOfDay(markdown)) {
        info.imminent = isImminent(calendar.settingTime(now, time->hour, time->minute), now);
    }
    return info;
}

}  // namespace sunpane::meeting_text
