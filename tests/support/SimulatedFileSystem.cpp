#include "support/SimulatedFileSystem.h"

#include <algorithm>
#include <cmath>

namespace sunpane::testing {
namespace {

std::string parentOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

}  // namespace

class SimulatedFileSystem::Lock : public FileLock {
public:
    Lock(std::weak_ptr<std::set<std::string>> locks, std::string path)
        : locks_(std::move(locks)), path_(std::move(path)) {}
    ~Lock() override {
        if (const auto locks = locks_.lock()) locks->erase(path_);
    }

private:
    std::weak_ptr<std::set<std::string>> locks_;
    std::string path_;
};

FileReading SimulatedFileSystem::read(const std::string& path, std::size_t maximumBytes) const {
    using Status = FileReading::Status;
    if (specialFiles.contains(path)) return {Status::unreadable, {}, {}};
    const auto file = files_.find(path);
    if (isDead() || file == files_.end()) return {Status::absent, {}, {}};
    const auto state = *stamp(path);
    if (forbiddenFiles.contains(path) || state.size > maximumBytes) return {Status::unreadable, {}, state};
    return {Status::read, file->second.bytes, state};
}

std::optional<FileStamp> SimulatedFileSystem::stamp(const std::string& path) const {
    const auto file = files_.find(path);
    if (isDead() || file == files_.end()) return std::nullopt;
    return FileStamp{file->second.modified, file->second.bytes.size(), file->second.identity};
}

bool SimulatedFileSystem::exists(const std::string& path) const {
    return !isDead() && (files_.contains(path) || folders_.contains(path) || specialFiles.contains(path));
}

bool SimulatedFileSystem::writeInPlace(const std::string& path, std::string_view bytes) {
    if (!mayWrite(path) || !step()) return false;
    const auto [file, isNew] = files_.try_emplace(path);
    if (isNew) file->second.identity = nextIdentity_++;
    const bool written = write(file->second, bytes);
    if (afterWrite) afterWrite(path);
    return written;
}

bool SimulatedFileSystem::overwrite(const std::string& path, std::string_view bytes, std::size_t minimumSize) {
    if (!mayWrite(path) || !step()) return false;
    const auto [place, isNew] = files_.try_emplace(path);
    File& file = place->second;
    if (isNew) file.identity = nextIdentity_++;
    const std::size_t size = std::max({minimumSize, bytes.size(), file.bytes.size()});
    const std::size_t growth = size - file.bytes.size();
    if (growth > freeBytes) {
        if (isNew) files_.erase(place);
        return false;
    }
    if (freeBytes != std::numeric_limits<std::size_t>::max()) freeBytes -= growth;
    file.bytes.resize(size, '\0');
    file.modified = nextTime();
    const std::size_t half = bytes.size() / 2;
    if (!step()) return false;
    file.bytes.replace(0, half, bytes.substr(0, half));
    if (!step()) return false;
    file.bytes.replace(half, bytes.size() - half, bytes.substr(half));
    return step();
}

std::string SimulatedFileSystem::beginning(const std::string& path, std::size_t count) const {
    const auto file = files_.find(path);
    return isDead() || file == files_.end() ? "" : file->second.bytes.substr(0, count);
}

bool SimulatedFileSystem::sync(const std::string& path) {
    if (!step()) return false;
    if (whileSyncing) whileSyncing(path);
    return step() && files_.contains(path);
}

bool SimulatedFileSystem::replaceAtomically(const std::string& path, std::string_view bytes) {
    if (!mayWrite(path) || !step()) return false;
    const std::string temporary = path + ".new";
    File& file = files_[temporary];
    file.identity = nextIdentity_++;
    if (!write(file, bytes) || !step()) return false;
    files_[path] = file;
    files_.erase(temporary);
    return step();
}

bool SimulatedFileSystem::copyToNew(const std::string& from, const std::string& to) {
    const FileReading reading = read(from, std::numeric_limits<std::size_t>::max());
    if (reading.status != FileReading::Status::read || files_.contains(to) || !mayWrite(to) || !step()) return false;
    File& file = files_[to];
    file.identity = nextIdentity_++;
    if (write(file, reading.bytes)) return true;
    if (!isDead()) files_.erase(to);
    return false;
}

bool SimulatedFileSystem::rename(const std::string& from, const std::string& to) {
    if (!files_.contains(from) || !mayWrite(to) || !step()) return false;
    files_[to] = files_.at(from);
    files_.erase(from);
    return step();
}

bool SimulatedFileSystem::remove(const std::string& path) {
    return mayWrite(path) && step() && files_.erase(path) > 0;
}

bool SimulatedFileSystem::createFolders(const std::string& path) {
    if (isDead()) return false;
    if (folders_.contains(path)) return true;
    if (readOnlyFolders.contains(parentOf(path))) return false;
    for (std::string folder = path; !folder.empty(); folder = parentOf(folder))
        folders_.insert(folder);
    return true;
}

std::unique_ptr<FileLock> SimulatedFileSystem::tryLock(const std::string& path) {
    if (!mayWrite(path) || !locks_->insert(path).second) return nullptr;
    return std::make_unique<Lock>(locks_, path);
}

void SimulatedFileSystem::writeExternally(const std::string& path, const std::string& bytes) {
    File& file = files_[path];
    const FileTime before = file.modified;
    file.bytes = bytes;
    file.identity = nextIdentity_++;
    file.modified = nextTime();
    const auto tick = std::max<std::int64_t>(1, std::llround(granularity * 1e9));
    if (file.modified <= before) file.modified.unixNanoseconds = before.unixNanoseconds + tick;
}

std::optional<std::string> SimulatedFileSystem::content(const std::string& path) const {
    const auto file = files_.find(path);
    return file == files_.end() ? std::nullopt : std::optional(file->second.bytes);
}

void SimulatedFileSystem::removeFolder(const std::string& path) {
    std::erase_if(files_, [&](const auto& entry) { return entry.first.starts_with(path + "/"); });
    std::erase_if(folders_, [&](const auto& folder) { return folder == path || folder.starts_with(path + "/"); });
}

std::vector<std::string> SimulatedFileSystem::filesIn(const std::string& folder) const {
    std::vector<std::string> names;
    for (const auto& [path, file] : files_) {
        if (parentOf(path) == folder) names.push_back(path.substr(folder.size() + 1));
    }
    return names;
}

bool SimulatedFileSystem::step() {
    if (isDead()) return false;
    ++steps_;
    --stepsToLive_;
    return !isDead();
}

bool SimulatedFileSystem::mayWrite(const std::string& path) const {
    const std::string folder = parentOf(path);
    return !isDead() && folders_.contains(folder) && !readOnlyFolders.contains(folder) &&
           !forbiddenFiles.contains(path) && !specialFiles.contains(path) && !folders_.contains(path);
}

// Empties the file, then fills it in two steps, each of which may be the last; a full disk leaves a beginning.
bool SimulatedFileSystem::write(File& file, std::string_view bytes) {
    if (freeBytes != std::numeric_limits<std::size_t>::max()) freeBytes += file.bytes.size();
    file.bytes.clear();
    file.modified = nextTime();
    const auto append = [&](std::string_view part) {
        if (!step()) return false;
        const std::size_t fits = std::min(part.size(), freeBytes);
        file.bytes.append(part.substr(0, fits));
        if (freeBytes != std::numeric_limits<std::size_t>::max()) freeBytes -= fits;
        return fits == part.size();
    };
    const std::size_t half = bytes.size() / 2;
    return append(bytes.substr(0, half)) && append(bytes.substr(half)) && step();
}

FileTime SimulatedFileSystem::nextTime() {
    const double ticks = std::floor(clock_.now().unixTime() / granularity);
    return {static_cast<std::int64_t>(ticks * granularity * 1e9)};
}

}  // namespace sunpane::testing
