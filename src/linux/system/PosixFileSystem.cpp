#include "linux/system/PosixFileSystem.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

#include "base/FileDescriptor.h"

namespace sunpane {
namespace {

constexpr std::int64_t nanosecondsPerSecond = 1000000000;

FileDescriptor openFile(const std::string& path, int flags, mode_t mode = 0) {
    // O_NONBLOCK: opening a pipe must fail rather than wait for its other end.
    return FileDescriptor(open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode));
}

bool isRegular(const FileDescriptor& file, struct stat& status) {
    return file.isOpen() && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
}

bool isRegular(const FileDescriptor& file) {
    struct stat status {};
    return isRegular(file, status);
}

bool writeAll(const FileDescriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file.get(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

FileStamp toStamp(const struct stat& status) {
    return {{status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec},
            static_cast<std::uint64_t>(status.st_size),
            status.st_ino};
}

// Opening some devices has effects, so what stands there is looked at first.
bool isRegularFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string parentOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Makes a rename in the folder survive a power cut.
void syncFolder(const std::string& folder) {
    const FileDescriptor descriptor = openFile(folder, O_RDONLY | O_DIRECTORY);
    if (descriptor.isOpen()) fsync(descriptor.get());
}

std::string resolvingLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path.c_str(), nullptr), &std::free);
    return resolved ? std::string(resolved.get()) : path;
}

bool copyBytes(const FileDescriptor& from, const FileDescriptor& to) {
    std::array<char, 1 << 16> buffer{};
    for (;;) {
        const ssize_t count = ::read(from.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) return fsync(to.get()) == 0;
        if (!writeAll(to, {buffer.data(), static_cast<std::size_t>(count)})) return false;
    }
}

class HeldLock : public FileLock {
public:
    explicit HeldLock(FileDescriptor file) : file_(std::move(file)) {}

private:
    FileDescriptor file_;
};

}  // namespace

FileReading PosixFileSystem::read(const std::string& path, std::size_t maximumBytes) const {
    using Status = FileReading::Status;
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return {errno == ENOENT || errno == ENOTDIR ? Status::absent : Status::unreadable, {}, {}};
    }
    if (!S_ISREG(status.st_mode)) return {Status::unreadable, {}, {}};
    const FileDescriptor file = openFile(path, O_RDONLY);
    if (!isRegular(file, status)) return {Status::unreadable, {}, {}};
    if (static_cast<std::uint64_t>(status.st_size) > maximumBytes) return {Status::unreadable, {}, toStamp(status)};

    FileReading reading{Status::read, {}, toStamp(status)};
    std::size_t length = 0;
    reading.bytes.resize(static_cast<std::size_t>(status.st_size) + 1);
    for (;;) {
        // The file may have grown since it was measured.
        if (length == reading.bytes.size()) {
            if (length > maximumBytes) return {Status::unreadable, {}, toStamp(status)};
            reading.bytes.resize(length + (1 << 16));
        }
        const ssize_t count = ::read(file.get(), reading.bytes.data() + length, reading.bytes.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return {Status::unreadable, {}, toStamp(status)};
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    if (length > maximumBytes) return {Status::unreadable, {}, toStamp(status)};
    reading.bytes.resize(length);
    return reading;
}

std::optional<FileStamp> PosixFileSystem::stamp(const std::string& path) const {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return toStamp(status);
}

bool PosixFileSystem::exists(const std::string& path) const {
    return access(path.c_str(), F_OK) == 0;
}

std::string PosixFileSystem::canonicalPath(const std::string& path) const {
    std::error_code error;
    const auto canonical = std::filesystem::weakly_canonical(std::filesystem::absolute(path, error), error);
    return error ? path : canonical.string();
}

bool PosixFileSystem::writeInPlace(const std::string& path, std::string_view bytes) {
    if (exists(path) && !isRegularFile(path)) return false;
    const FileDescriptor file = openFile(path, O_WRONLY | O_CREAT, 0644);
    return isRegular(file) && ftruncate(file.get(), 0) == 0 && writeAll(file, bytes);
}

bool PosixFileSystem::overwrite(const std::string& path, std::string_view bytes, std::size_t minimumSize) {
    if (exists(path) && !isRegularFile(path)) return false;
    const FileDescriptor file = openFile(path, O_WRONLY | O_CREAT | O_NOFOLLOW, 0600);
    struct stat status {};
    if (!isRegular(file, status)) return false;
    const auto size = static_cast<off_t>(std::max(minimumSize, bytes.size()));
    const bool fits = status.st_size >= size || posix_fallocate(file.get(), 0, size) == 0;
    if (!fits && status.st_size == 0) unlink(path.c_str());
    return fits && writeAll(file, bytes);
}

std::string PosixFileSystem::beginning(const std::string& path, std::size_t count) const {
    if (!isRegularFile(path)) return {};
    const FileDescriptor file = openFile(path, O_RDONLY);
    if (!isRegular(file)) return {};
    std::string bytes(count, '\0');
    const ssize_t length = ::read(file.get(), bytes.data(), count);
    bytes.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return bytes;
}

bool PosixFileSystem::sync(const std::string& path) {
    const FileDescriptor file = openFile(path, O_RDONLY);
    if (!isRegular(file) || fsync(file.get()) != 0) return false;
    syncFolder(parentOf(path));
    return true;
}

bool PosixFileSystem::replaceAtomically(const std::string& path, std::string_view bytes) {
    const std::string target = resolvingLinks(path);
    const std::string temporary = target + ".new";
    // Left over from a crash at worst: it never held anything that was acknowledged.
    unlink(temporary.c_str());
    struct stat previous {};
    const bool replaces = ::stat(target.c_str(), &previous) == 0;
    if (replaces && !S_ISREG(previous.st_mode)) return false;
    const bool written = [&] {
        const FileDescriptor file = openFile(temporary, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
        if (replaces && file.isOpen()) fchmod(file.get(), previous.st_mode & 07777);
        return file.isOpen() && writeAll(file, bytes) && fsync(file.get()) == 0;
    }();
    if (!written || ::rename(temporary.c_str(), target.c_str()) != 0) {
        unlink(temporary.c_str());
        return false;
    }
    syncFolder(parentOf(target));
    return true;
}

bool PosixFileSystem::copyToNew(const std::string& from, const std::string& to) {
    if (!isRegularFile(from)) return false;
    const FileDescriptor source = openFile(from, O_RDONLY);
    if (!isRegular(source)) return false;
    const FileDescriptor target = openFile(to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!target.isOpen()) return false;
    if (copyBytes(source, target)) return true;
    unlink(to.c_str());
    return false;
}

bool PosixFileSystem::rename(const std::string& from, const std::string& to) {
    return ::rename(from.c_str(), to.c_str()) == 0;
}

bool PosixFileSystem::remove(const std::string& path) {
    return unlink(path.c_str()) == 0;
}

bool PosixFileSystem::createFolders(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    return std::filesystem::is_directory(path, error);
}

std::unique_ptr<FileLock> PosixFileSystem::tryLock(const std::string& path) {
    auto file = openFile(path, O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    if (!isRegular(file) || flock(file.get(), LOCK_EX | LOCK_NB) != 0) return nullptr;
    return std::make_unique<HeldLock>(std::move(file));
}

void sleepFor(Seconds seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

}  // namespace sunpane
