#include "linux/system/SystemClock.h"

#include <sys/stat.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <chrono>
#include <cstdlib>
#include <memory>

namespace sunpane {
namespace {

// What the host's time zone is made from, cheap enough to ask at every reading.
std::string describeZoneSource() {
    std::string source = "TZ=";
    if (const char* variable = std::getenv("TZ")) return source.append(variable);
    struct stat link {};
    if (lstat("/etc/localtime", &link) != 0) return source;
    return source.append(std::to_string(link.st_ino)).append("@").append(std::to_string(link.st_mtim.tv_sec));
}

}  // namespace

Instant SystemClock::now() const {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Instant::fromUnix(std::chrono::duration<double>(sinceEpoch).count());
}

std::string SystemClock::timeZone() const {
    const std::lock_guard lock(mutex_);
    if (auto source = describeZoneSource(); zone_.empty() || source != zoneSource_) {
        const std::unique_ptr<icu::TimeZone> host(icu::TimeZone::detectHostTimeZone());
        icu::UnicodeString name;
        zone_.clear();
        if (host) host->getID(name).toUTF8String(zone_);
        if (zone_.empty()) zone_ = "UTC";
        zoneSource_ = std::move(source);
    }
    return zone_;
}

std::string SystemClock::locale() const {
    return icu::Locale::getDefault().getName();
}

}  // namespace sunpane
