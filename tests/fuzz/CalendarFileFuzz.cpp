#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "linux/calendar/CalendarSnapshot.h"
#include "linux/calendar/IcsExpansion.h"
#include "linux/calendar/IcsReading.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void checkText(const std::optional<std::string>& text) {
    require(!text || sunpane::text::isValidUtf8(*text));
}

}  // namespace

// Whatever a file holds, what happens in a span of time overlaps it, ends after it begins, has text that can be shown
// and, within a series, an identity of its own; and the index finds all of it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sunpane;
    static IcsZones zones;
    constexpr double day = 86400;
    constexpr TimeSpan span{{816480000}, {816480000 + 4 * day}};
    const auto userZone = zones.userZone("America/New_York");
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    const auto content = std::make_shared<const IcsContent>(readIcs(file, zones));
    checkText(content->calendarName);
    for (const auto& event : content->events) {
        require(text::isValidUtf8(event.uid));
        for (const auto* each : {&event.title, &event.location, &event.notes, &event.url})
            checkText(*each);
    }
    // Working out what repeats takes longer than all the rest.
    constexpr std::size_t oneIn = 4;
    if (std::hash<std::string_view>()(file) % oneIn != 0) return 0;
    const auto occurrences = std::make_shared<const std::vector<IcsOccurrence>>(expand(*content, span, *userZone));
    std::set<std::pair<const IcsEvent*, std::string_view>> identities;
    for (const auto& each : *occurrences) {
        require(each.time.from <= each.time.to && overlaps(each.time, span));
        require(identities.emplace(each.event, each.recurrence).second);
        require(each.recurrence.empty() == (!each.event->recurrence && !each.event->replaces));
    }
    const CalendarSnapshot snapshot(span, {{"c", "c", false}}, {{0, content, occurrences}});
    require(snapshot.events(span.from, span.to).size() == occurrences->size());
    return 0;
}
