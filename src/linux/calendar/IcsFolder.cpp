#include "linux/calendar/IcsFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

namespace sunpane {
namespace {

constexpr std::string_view ending = ".ics";
constexpr std::int64_t nanosecondsPerSecond = 1000000000;

bool isVisible(std::string_view name) {
    return !name.empty() && name.front() != '.';
}

bool isCalendarFile(std::string_view name) {
    return isVisible(name) && name.size() > ending.size() && name.ends_with(ending);
}

struct Entry {
    std::string name;
    struct stat status;
};

/// Lists one folder; `linkFlag` is 0 to follow links and AT_SYMLINK_NOFOLLOW not to.
std::vector<Entry> list(const std::string& folder, int linkFlag) {
    struct Closer {
        void operator()(DIR* open) const { closedir(open); }
    };
    std::vector<Entry> entries;
    const std::unique_ptr<DIR, Closer> open(opendir(folder.c_str()));
    if (!open) return entries;
    while (const dirent* item = readdir(open.get())) {
        if (!isVisible(item->d_name) || entries.size() >= maximumCalendarFiles) continue;
        Entry entry{item->d_name, {}};
        if (fstatat(dirfd(open.get()), item->d_name, &entry.status, linkFlag) == 0) entries.push_back(std::move(entry));
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return entries;
}

/// Collects files until a bound is reached.
class Collector {
public:
    void add(IcsFolderCalendar& calendar, const std::string& path, const struct stat& status) {
        const auto size = static_cast<std::uint64_t>(status.st_size);
        if (!S_ISREG(status.st_mode) || size > maximumCalendarFileSize) return;
        if (count_ >= maximumCalendarFiles || size > maximumCalendarsSize - size_) return;
        ++count_;
        size_ += size;
        const auto modified = status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec;
        calendar.files.push_back({path, {{modified}, size, status.st_ino}});
    }

private:
    std::size_t count_ = 0;
    std::uint64_t size_ = 0;
};

}  // namespace

std::string IcsFolderCalendar::title() const {
    return folder.empty() && isCalendarFile(entry) ? entry.substr(0, entry.size() - ending.size()) : entry;
}

std::vector<IcsFolderCalendar> scanCalendars(const std::string& folder) {
    std::vector<IcsFolderCalendar> calendars;
    Collector collector;
    for (const auto& entry : list(folder, 0)) {
        const std::string path = folder + "/" + entry.name;
        if (S_ISDIR(entry.status.st_mode)) {
            IcsFolderCalendar calendar{entry.name, path, {}};
            for (const auto& file : list(path, AT_SYMLINK_NOFOLLOW)) {
                if (isCalendarFile(file.name)) collector.add(calendar, path + "/" + file.name, file.status);
            }
            calendars.push_back(std::move(calendar));
        } else if (S_ISREG(entry.status.st_mode) && isCalendarFile(entry.name)) {
            IcsFolderCalendar calendar{entry.name, "", {}};
            collector.add(calendar, path, entry.status);
            calendars.push_back(std::move(calendar));
        }
    }
    return calendars;
}

}  // namespace sunpane
