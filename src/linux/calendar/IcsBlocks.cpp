#include "linux/calendar/IcsBlocks.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "base/Text.h"
#include "linux/calendar/IcsReading.h"

namespace sunpane {
namespace {

constexpr std::size_t maximumZones = 1000;
constexpr std::size_t maximumZoneLength = std::size_t{1} << 18;

constexpr std::array<std::string_view, 17> usedProperties{
    "UID",           "SUMMARY", "DTSTART",  "DTEND",  "DURATION",   "RRULE",    "RDATE",       "EXDATE",
    "RECURRENCE-ID", "URL",     "LOCATION", "STATUS", "CONFERENCE", "SEQUENCE", "DESCRIPTION", "X-GOOGLE-CONFERENCE",
    "ATTENDEE"};

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return upper(x) == upper(y); });
}

/// A property with its continuation lines.
struct Property {
    std::string_view raw;
    std::string_view name;
    /// What follows the first colon, still folded and escaped.
    std::string_view value;
};

/// Walks a file property by property.
class PropertyReader {
public:
    explicit PropertyReader(std::string_view text) : text_(text) {
        if (text_.starts_with("\xEF\xBB\xBF")) text_.remove_prefix(3);
    }

    bool next(Property& property) {
        if (text_.empty()) return false;
        std::size_t end = 0;
        do {
            const auto newline = text_.find('\n', end);
            end = newline == std::string_view::npos ? text_.size() : newline + 1;
        } while (end < text_.size() && (text_[end] == ' ' || text_[end] == '\t'));
        property.raw = text_.substr(0, end);
        text_.remove_prefix(end);
        property.name = property.raw.substr(0, property.raw.find_first_of(";:\r\n"));
        const auto colon = property.raw.find(':');
        property.value = colon == std::string_view::npos ? std::string_view() : property.raw.substr(colon + 1);
        while (!property.value.empty() && (property.value.back() == '\n' || property.value.back() == '\r'))
            property.value.remove_suffix(1);
        return true;
    }

private:
    std::string_view text_;
};

/// A text value without folds and escapes.
std::string plainText(std::string_view value) {
    std::string result;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\r') continue;
        if (value[i] == '\n') {
            ++i;  // the blank that continues the line
        } else if (value[i] == '\\' && i + 1 < value.size()) {
            ++i;
            result += value[i] == 'n' || value[i] == 'N' ? ' ' : value[i];
        } else {
            result += value[i];
        }
    }
    return text::toValidUtf8(result);
}

class Splitter {
public:
    void take(const Property& property) {
        if (equalsIgnoringCase(property.name, "BEGIN")) {
            begin(property);
        } else if (equalsIgnoringCase(property.name, "END")) {
            end(property);
        } else if (inside_ == Inside::zone) {
            zone_.append(property.raw);
            if (nested_ == 0 && equalsIgnoringCase(property.name, "TZID")) zoneName_ = plainText(property.value);
        } else if (inside_ == Inside::event) {
            if (nested_ == 0) takeEventProperty(property);
        } else if (equalsIgnoringCase(property.name, "X-WR-CALNAME") && !blocks_.calendarName) {
            if (auto name = plainText(property.value); !name.empty()) blocks_.calendarName = std::move(name);
        }
    }

    IcsBlocks finish() { return std::move(blocks_); }

private:
    enum class Inside { nothing, event, zone };

    void begin(const Property& property) {
        const bool isEvent = equalsIgnoringCase(property.value, "VEVENT");
        const bool isZone = equalsIgnoringCase(property.value, "VTIMEZONE");
        // Neither ever stands inside another, so what was open before was never closed.
        if (inside_ != Inside::nothing && !isEvent && !isZone) {
            ++nested_;
            if (inside_ == Inside::zone) zone_.append(property.raw);
            return;
        }
        nested_ = 0;
        if (isEvent) {
            inside_ = Inside::event;
            event_ = {"BEGIN:VEVENT\r\n", false};
        } else if (isZone) {
            inside_ = Inside::zone;
            zone_ = "BEGIN:VTIMEZONE\r\n";
            zoneName_.clear();
        }
    }

    void end(const Property& property) {
        if (inside_ == Inside::nothing) return;
        const std::string_view own = inside_ == Inside::event ? "VEVENT" : "VTIMEZONE";
        // An alarm that was never closed does not swallow the rest of the file.
        if (nested_ > 0 && !equalsIgnoringCase(property.value, own)) {
            --nested_;
            if (inside_ == Inside::zone) zone_.append(property.raw);
            return;
        }
        if (inside_ == Inside::event && blocks_.events.size() < maximumEventsPerFile) {
            event_.lines += "END:VEVENT\r\n";
            if (!text::isValidUtf8(event_.lines)) event_.lines = text::toValidUtf8(event_.lines);
            blocks_.events.push_back(std::move(event_));
        } else if (inside_ == Inside::zone && blocks_.zones.size() < maximumZones &&
                   zone_.size() <= maximumZoneLength) {
            blocks_.zones[zoneName_] = zone_ + "END:VTIMEZONE\r\n";
        }
        inside_ = Inside::nothing;
    }

    void takeEventProperty(const Property& property) {
        if (property.raw.size() > maximumPropertyLength || property.raw.find('\0') != std::string_view::npos) return;
        const bool used = std::any_of(usedProperties.begin(), usedProperties.end(),
                                      [&](std::string_view name) { return equalsIgnoringCase(name, property.name); });
        if (!used) return;
        if (equalsIgnoringCase(property.name, "ATTENDEE")) {
            event_.hasAttendees = true;
            return;
        }
        event_.lines.append(property.raw);
        if (!property.raw.ends_with('\n')) event_.lines += "\r\n";
    }

    IcsBlocks blocks_;
    Inside inside_ = Inside::nothing;
    // How deep inside components of the event or the zone.
    std::size_t nested_ = 0;
    IcsBlocks::Event event_;
    std::string zone_;
    std::string zoneName_;
};

}  // namespace

IcsBlocks splitIcs(std::string_view text, const StopFlag& stopped) {
    PropertyReader reader(text);
    Splitter splitter;
    for (Property property; !stopped && reader.next(property);)
        splitter.take(property);
    return splitter.finish();
}

}  // namespace sunpane
