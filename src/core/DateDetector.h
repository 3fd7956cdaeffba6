#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Clock.h"
#include "base/Instant.h"

namespace sunpane {

/// A point in time that a text speaks of, and how long what happens then takes.
struct DetectedDate {
    Instant date;
    /// 0 when the text does not say.
    Seconds duration = 0;
    friend bool operator==(const DetectedDate&, const DetectedDate&) = default;
};

/// Finds dates, times of day and durations in everyday text, such as "tomorrow at 3pm", "Fri 14:00", "16 Nov 09:30",
/// "in 2 hours" or "from 3 to 4:30". Words are English; the names of days and months are also taken in the user's
/// language. Version numbers, prices and phone numbers are no dates.
///
/// Keeps the names of one locale, which cost more to look up than a text to read: keep a detector and use it for many
/// texts. Main thread only.
class DateDetector {
public:
    /// No more than this much of a text is read (bytes).
    static constexpr std::size_t maximumText = 2000;

    /// `clock` outlives the detector.
    explicit DateDetector(const Clock& clock);
    ~DateDetector();
    DateDetector(DateDetector&&) noexcept;
    DateDetector& operator=(DateDetector&&) noexcept;

    /// The first date of `text` (valid UTF-8), which may lie in the past; absent when it speaks of none. A day without
    /// a time of day means noon, a time of day without a day means today, and a day without a year the nearest one.
    std::optional<DetectedDate> firstDate(std::string_view text);

private:
    struct Vocabulary;
    const Clock* clock_;
    std::unique_ptr<Vocabulary> vocabulary_;
};

}  // namespace sunpane
