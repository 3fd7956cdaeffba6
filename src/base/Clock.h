#pragma once

#include <string>

#include "base/Instant.h"

namespace sunpane {

/// The wall clock and the user's place in time. May be read from any thread.
class Clock {
public:
    virtual ~Clock() = default;

    virtual Instant now() const = 0;

    /// The user's time zone as an IANA name, such as "Europe/Amsterdam", or, where it has none, as rules that
    /// `makeTimeZone` reads. May change while the program runs.
    virtual std::string timeZone() const = 0;

    /// The user's locale as an ICU name, such as "nl_NL". It decides the user's calendar.
    virtual std::string locale() const = 0;
};

}  // namespace sunpane
