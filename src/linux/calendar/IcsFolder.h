#pragma once

#include <string>
#include <vector>

#include "platform/FileSystem.h"

namespace sunpane {

/// One calendar in the folder of calendars: a file, or a folder of files.
struct IcsFolderCalendar {
    /// The entry's name, which is the calendar's identity.
    std::string entry;
    /// The folder's path, or empty for a file.
    std::string folder;
    struct File {
        std::string path;
        FileStamp stamp;
    };
    /// By name.
    std::vector<File> files;

    /// The entry's name without the ending of calendar files.
    std::string title() const;
};

/// Files past these are left out.
constexpr std::size_t maximumCalendarFiles = 100000;
/// A longer file (bytes) is left out.
constexpr std::size_t maximumCalendarFileSize = std::size_t{64} << 20;
/// Files past this size together (bytes) are left out.
constexpr std::size_t maximumCalendarsSize = std::size_t{256} << 20;

/// The calendars in a folder by name, without reading them. An entry may be a link, which is the user's own doing; a
/// link inside a calendar's folder, and whatever is no file, is passed over. A missing folder has no calendars.
std::vector<IcsFolderCalendar> scanCalendars(const std::string& folder);

}  // namespace sunpane
