#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/Dates.h"
#include "core/briefing/Briefing.h"

/// Briefing files as they lie on the disk. Any thread; nothing here blocks on what is not a regular file.
namespace sunpane::briefing {

/// A file beyond this many bytes is not read.
inline constexpr std::size_t maximumFileBytes = std::size_t{1} << 30;

/// The text of a file and when it was last modified.
struct FileText {
    std::string bytes;
    Instant modified;
};

/// Reads a regular file, or the regular file that a link stands for, into `file`, whose memory is used again. False,
/// without waiting, for anything else: a folder, a pipe, a device, a dangling link, a file that may not be read or is
/// too large. `folder` is an open folder that `path` starts from, or AT_FDCWD. A file that is written meanwhile is read
/// again a few times, so that no half of an old text stands before half of a new one.
bool readFile(int folder, const char* path, FileText& file);

/// The same for an entry that the folder's listing says is a regular file, which spares asking again.
bool readListedFile(int folder, const char* name, FileText& file);

/// The briefing that a file of this name and content holds; absent when the content is not UTF-8. A byte order mark
/// is dropped: it belongs to the encoding, and would hide the title from its reader. A name that is not UTF-8 is
/// repaired in the id.
std::optional<Briefing> parseText(std::string_view name, const FileText& file, const LocalCalendar& calendar);

/// Reads and parses one file; absent when `readFile` or `parseText` yield nothing.
std::optional<Briefing> parseFile(const std::string& path, const LocalCalendar& calendar);

/// The content without its byte order mark.
std::string_view withoutByteOrderMark(std::string_view bytes);

/// The last part of a path.
std::string_view fileName(std::string_view path);
/// A file name without its extension.
std::string_view stem(std::string_view name);
/// Whether the extension is "md" in upper or lower case. ".md" is a hidden file without an extension.
bool isMarkdownName(std::string_view name);

/// The first "yyyy-MM-dd" in the text, in digits of any script, as the first instant of that day. Absent when there is
/// none or the first one is no day of the calendar.
std::optional<Instant> dateFromName(std::string_view name, const LocalCalendar& calendar);

}  // namespace sunpane::briefing
