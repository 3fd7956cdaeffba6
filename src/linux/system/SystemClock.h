#pragma once

#include <mutex>
#include <string>

#include "base/Clock.h"

namespace sunpane {

/// The machine's clock, the time zone of `TZ` or /etc/localtime, and the environment's locale. A change of the zone
/// is noticed at the next reading. Any thread.
///
/// Whatever the C library takes for a zone counts: a name, a file, a link to one, rules. A zone file that has no name
/// counts by the rules in its last line.
class SystemClock : public Clock {
public:
    Instant now() const override;
    std::string timeZone() const override;
    std::string locale() const override;

private:
    // Finding the zone's name may mean comparing files, so it is kept for as long as its sources look the same.
    mutable std::mutex mutex_;
    mutable std::string zone_;
    mutable std::string zoneSource_;
};

}  // namespace sunpane
