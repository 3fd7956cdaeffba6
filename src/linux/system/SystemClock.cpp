#include "linux/system/SystemClock.h"

#include <sys/stat.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string_view>

#include "base/TimeZones.h"

namespace sunpane {
namespace {

constexpr const char* localTimeFile = "/etc/localtime";
constexpr const char* utc = "UTC";

// What `TZ` says, without the colon that may mark it as a file's; null when it is not set.
const char* zoneVariable() {
    const char* variable = std::getenv("TZ");
    return variable != nullptr && *variable == ':' ? variable + 1 : variable;
}

// The file that the zone comes from; empty when `TZ` is no file's name.
std::string zoneFile() {
    const char* variable = zoneVariable();
    if (variable == nullptr) return localTimeFile;
    const std::string_view name = variable;
    if (name.empty() || name.starts_with('/')) return std::string(name);
    const char* folder = std::getenv("TZDIR");
    std::string path = folder != nullptr && *folder != '\0' ? folder : "/usr/share/zoneinfo";
    path.append("/").append(name);
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored) ? path : "";
}

// What the host's time zone is made from, cheap enough to ask at every reading.
std::string describeZoneSource() {
    const char* variable = zoneVariable();
    std::string source = variable != nullptr ? std::string("TZ=") + variable : "";
    if (variable != nullptr && *variable != '/') return source;
    struct stat link {};
    if (lstat(variable != nullptr ? variable : localTimeFile, &link) != 0) return source;
    return source.append("@")
        .append(std::to_string(link.st_ino))
        .append("@")
        .append(std::to_string(link.st_mtim.tv_sec));
}

// The name of a zone file by its place in the system's tree of them; empty elsewhere.
std::string nameByPlace(const std::string& file) {
    std::error_code error;
    const std::string path = std::filesystem::canonical(file, error).string();
    constexpr std::string_view tree = "/zoneinfo/";
    const auto at = path.find(tree);
    if (error || at == std::string::npos) return {};
    std::string_view name = std::string_view(path).substr(at + tree.size());
    for (const std::string_view part : {"posix/", "right/"}) {
        if (name.starts_with(part)) name.remove_prefix(part.size());
    }
    return isZoneName(name) ? std::string(name) : "";
}

// The rules for the time to come, which stand in the last line of a zone file; empty when it has none.
std::string rulesOf(const std::string& path) {
    constexpr std::size_t largestFile = 1 << 20;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error) || std::filesystem::file_size(path, error) > largestFile)
        return {};
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    if (!content.starts_with("TZif") || !content.ends_with('\n')) return {};
    const auto start = content.rfind('\n', content.size() - 2);
    std::string rules = start == std::string::npos ? "" : content.substr(start + 1, content.size() - start - 2);
    return makeTimeZone(rules) ? rules : "";
}

std::string findZone() {
    const char* variable = zoneVariable();
    if (variable == nullptr) {
        // A copy of a zone file is found by comparing, which takes long.
        const std::unique_ptr<icu::TimeZone> host(icu::TimeZone::detectHostTimeZone());
        icu::UnicodeString id;
        std::string name;
        if (host) host->getID(id).toUTF8String(name);
        if (isZoneName(name)) return name;
    } else if (isZoneName(variable)) {
        return variable;
    }
    if (const std::string file = zoneFile(); !file.empty()) {
        if (std::string name = nameByPlace(file); !name.empty()) return name;
        if (std::string rules = rulesOf(file); !rules.empty()) return rules;
        return utc;
    }
    return variable != nullptr && makeTimeZone(variable) ? variable : utc;
}

// Who reads English may write dates as at home, so the locale of dates and times counts, not that of messages, which is
// ICU's default. Null when the environment names none.
const char* localeVariable() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* name = std::getenv(variable);
        if (name != nullptr && *name != '\0') return name;
    }
    return nullptr;
}

}  // namespace

Instant SystemClock::now() const {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Instant::fromUnix(std::chrono::duration<double>(sinceEpoch).count());
}

std::string SystemClock::timeZone() const {
    const std::lock_guard lock(mutex_);
    if (auto source = describeZoneSource(); zone_.empty() || source != zoneSource_) {
        zone_ = findZone();
        zoneSource_ = std::move(source);
    }
    return zone_;
}

std::string SystemClock::locale() const {
    const char* name = localeVariable();
    const auto locale = name != nullptr ? icu::Locale::createCanonical(name) : icu::Locale::getDefault();
    // Neither "C" nor "POSIX" is a language.
    const std::size_t length = std::string_view(locale.getLanguage()).size();
    return locale.isBogus() || length < 2 || length > 3 ? "en_US_POSIX" : locale.getName();
}

}  // namespace sunpane
