#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/Dates.h"
#include "base/Text.h"
#include "core/DateDetector.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

struct FixedClock : sunpane::Clock {
    sunpane::Instant now() const override { return sunpane::Instant::fromUnix(1795305600); }
    std::string timeZone() const override { return "Europe/Amsterdam"; }
    std::string locale() const override { return "de_DE"; }
};

}  // namespace

// Whatever is typed, what is found is a date of some year and lasts no longer than a thousand weeks; and a text that
// has no date still has none behind words that are no dates.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FixedClock clock;
    static sunpane::DateDetector detector(clock);
    const std::string text = sunpane::text::toValidUtf8({reinterpret_cast<const char*>(data), size});
    const auto found = detector.firstDate(text);
    require(found == detector.firstDate(text));
    if (found) {
        require(std::isfinite(found->date.sinceReference));
        const int year = sunpane::LocalCalendar(clock).day(found->date).year;
        require(year >= 1970 && year <= 2300);
        require(found->duration >= 0 && found->duration <= 1000 * 604800.0);
    }
    require(text.size() > 1000 || found.has_value() == detector.firstDate("Anna; " + text).has_value());
    return 0;
}
