#pragma once

#include <compare>

namespace sunpane {

/// A length of time in seconds, with fraction.
using Seconds = double;

/// A point in time: seconds, with fraction, since 1 January 2001 00:00:00 UTC, the form in which the store files
/// keep it. A plain double, so that an instant survives being written and read without loss.
struct Instant {
    double sinceReference = 0;

    /// Seconds from 1 January 1970 to 1 January 2001, both 00:00:00 UTC.
    static constexpr double referenceInUnixTime = 978307200;

    static constexpr Instant fromUnix(double seconds) { return {seconds - referenceInUnixTime}; }
    constexpr double unixTime() const { return sinceReference + referenceInUnixTime; }

    /// Earlier than anything that happens: 1 January of the year 1.
    static constexpr Instant distantPast() { return {-63114076800.0}; }

    friend constexpr auto operator<=>(const Instant&, const Instant&) = default;
    friend constexpr Instant operator+(Instant instant, Seconds seconds) { return {instant.sinceReference + seconds}; }
    friend constexpr Instant operator-(Instant instant, Seconds seconds) { return {instant.sinceReference - seconds}; }
    friend constexpr Seconds operator-(Instant a, Instant b) { return a.sinceReference - b.sinceReference; }
};

}  // namespace sunpane
