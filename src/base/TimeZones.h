#pragma once

#include <unicode/timezone.h>

#include <memory>
#include <string_view>

namespace sunpane {

/// Whether the time zone database of ICU has a zone of this IANA name. "GMT+3" and the like are no names: ICU and the
/// system count them from opposite sides.
bool isZoneName(std::string_view name);

/// The zone of an IANA name, or of rules as POSIX writes them in `TZ`, such as "CET-1CEST,M3.5.0,M10.5.0/3" or
/// "<+03>-3". Summer time without rules comes and goes as in the United States, as with newer C libraries. Null for
/// anything else.
std::unique_ptr<icu::TimeZone> makeTimeZone(std::string_view nameOrRules);

}  // namespace sunpane
