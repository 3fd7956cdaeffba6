#include "core/briefing/BriefingFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unicode/uchar.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "base/FileDescriptor.h"
#include "base/Text.h"
#include "core/briefing/BriefingParser.h"

namespace sunpane::briefing {
namespace {

constexpr int maximumReadAttempts = 3;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

Instant modificationTime(const struct stat& status) {
    constexpr double nanosecondsPerSecond = 1e9;
    return Instant::fromUnix(static_cast<double>(status.st_mtim.tv_sec) +
                             static_cast<double>(status.st_mtim.tv_nsec) / nanosecondsPerSecond);
}

bool isReadable(const struct stat& status) {
    return S_ISREG(status.st_mode) && static_cast<std::size_t>(status.st_size) <= maximumFileBytes;
}

// Reads from the start to the end of the file, however long it has become. False on an error or beyond the bound.
bool readAll(int descriptor, std::size_t expectedSize, std::string& bytes) {
    // One byte of room beyond the expected end shows with the first reading that it is the end.
    bytes.resize(expectedSize + 1);
    std::size_t size = 0;
    for (;;) {
        const ssize_t count = pread(descriptor, bytes.data() + size, bytes.size() - size, static_cast<off_t>(size));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        size += static_cast<std::size_t>(count);
        // Fewer bytes than asked for are the end of a regular file; a signal does not cut its reading short.
        if (size < bytes.size()) break;
        if (size > maximumFileBytes) return false;
        bytes.resize(2 * bytes.size());
    }
    bytes.resize(size);
    return true;
}

bool isSameVersion(const struct stat& a, const struct stat& b) {
    return a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

}  // namespace

bool readFile(int folder, const char* path, FileText& file) {
    // Merely opening a device can make it act, so what the path stands for is known before. Whatever takes its place
    // in between is not waited for either.
    struct stat status {};
    if (fstatat(folder, path, &status, 0) != 0 || !isReadable(status)) return false;
    return readListedFile(folder, path, file);
}

bool readListedFile(int folder, const char* name, FileText& file) {
    struct stat before {};
    const FileDescriptor descriptor(openat(folder, name, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!descriptor.isOpen() || fstat(descriptor.get(), &before) != 0 || !isReadable(before)) return false;
    for (int attempt = 0; attempt < maximumReadAttempts; ++attempt) {
        if (!readAll(descriptor.get(), static_cast<std::size_t>(before.st_size), file.bytes)) return false;
        struct stat after {};
        if (fstat(descriptor.get(), &after) != 0) return false;
        file.modified = modificationTime(after);
        if (isSameVersion(before, after)) break;
        before = after;
    }
    return true;
}

std::optional<Briefing> parseText(std::string_view name, const FileText& file, const LocalCalendar& calendar) {
    if (!text::isValidUtf8(file.bytes)) return std::nullopt;
    Document document = splitDocument(withoutByteOrderMark(file.bytes));
    std::string id = text::toValidUtf8(name);
    const Instant date = dateFromName(stem(id), calendar).value_or(file.modified);
    return Briefing{std::move(id), date, std::move(document.title), std::move(document.markdown)};
}

std::optional<Briefing> parseFile(const std::string& path, const LocalCalendar& calendar) {
    FileText file;
    if (!readFile(AT_FDCWD, path.c_str(), file)) return std::nullopt;
    return parseText(fileName(path), file, calendar);
}

std::string_view withoutByteOrderMark(std::string_view bytes) {
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    return bytes;
}

std::string_view fileName(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

std::string_view stem(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? name : name.substr(0, dot);
}

bool isMarkdownName(std::string_view name) {
    constexpr std::size_t extensionSize = 3;
    if (name.size() <= extensionSize) return false;
    // No other letter becomes "m" or "d" in lower case, so ASCII is all there is to compare.
    const std::string_view extension = name.substr(name.size() - extensionSize);
    return extension[0] == '.' && (extension[1] | 0x20) == 'm' && (extension[2] | 0x20) == 'd';
}

std::optional<Instant> dateFromName(std::string_view name, const LocalCalendar& calendar) {
    constexpr std::string_view pattern = "dddd-dd-dd";
    // The last code points that were seen, as digits; anything else but "-" is no digit and no separator.
    constexpr int dash = -2;
    constexpr int other = -1;
    std::array<int, pattern.size()> window{};
    window.fill(other);
    for (std::size_t position = 0; position < name.size();) {
        const auto codePoint = static_cast<UChar32>(text::nextCodePoint(name, position));
        std::rotate(window.begin(), window.begin() + 1, window.end());
        window.back() = codePoint == '-' ? dash : u_charDigitValue(codePoint);
        const bool matches = std::equal(window.begin(), window.end(), pattern.begin(),
                                        [](int value, char kind) { return kind == 'd' ? value >= 0 : value == dash; });
        if (!matches) continue;
        const auto number = [&](std::size_t from, std::size_t count) {
            int value = 0;
            for (std::size_t i = from; i < from + count; ++i)
                value = value * 10 + window[i];
            return value;
        };
        return calendar.startOfDay(CivilDay{number(0, 4), number(5, 2), number(8, 2)});
    }
    return std::nullopt;
}

}  // namespace sunpane::briefing
