#include "linux/system/JsonUserDefaults.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <thread>
#include <utility>

#include "base/FileDescriptor.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/XdgPaths.h"

namespace sunpane {
namespace {

using Json = nlohmann::json;

std::optional<UserDefaults::Value> fromJson(const Json& json) {
    if (json.is_boolean()) return json.get<bool>();
    if (json.is_number_integer()) return json.get<std::int64_t>();
    if (json.is_number_float()) return json.get<double>();
    if (json.is_string()) return json.get<std::string>();
    if (!json.is_array()) return std::nullopt;
    std::vector<std::string> strings;
    for (const auto& element : json) {
        if (!element.is_string()) return std::nullopt;
        strings.push_back(element.get<std::string>());
    }
    return strings;
}

Json toJson(const UserDefaults::Value& value) {
    return std::visit([](const auto& held) { return Json(held); }, value);
}

/// Held while a program of ours reads, changes and replaces a file of a folder. The folder itself is locked, so that no
/// lock file is left behind.
class FolderTurn {
public:
    /// Waits for whoever has the turn, but not for ever: a stopped process must not stop the panel.
    explicit FolderTurn(const std::string& folder) : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        const auto end = std::chrono::steady_clock::now() + patience;
        while (folder_.isOpen() && flock(folder_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK &&
               std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(pause);
        }
    }

private:
    static constexpr auto patience = std::chrono::seconds(1);
    static constexpr auto pause = std::chrono::milliseconds(2);
    FileDescriptor folder_;
};

std::string createdFolderOf(const std::string& path) {
    const auto folder = std::filesystem::path(path).parent_path();
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    return folder.string();
}

/// Keeps a file that cannot be understood under another name. What was kept there before goes only when all of it is.
bool keepAside(FileSystem& files, const std::string& path, const std::string& kept) {
    const std::string copy = kept + ".new";
    files.remove(copy);
    if (files.copyToNew(path, copy) && files.rename(copy, kept)) return true;
    files.remove(copy);
    // What may not be read may still be moved.
    return files.rename(path, kept);
}

}  // namespace

JsonUserDefaults::JsonUserDefaults(std::string path) : path_(std::move(path)) {}

std::string JsonUserDefaults::defaultPath() {
    return xdg::configFolder() + "/defaults.json";
}

std::optional<UserDefaults::Value> JsonUserDefaults::value(std::string_view key) const {
    const std::lock_guard lock(mutex_);
    reloadIfChanged();
    const auto found = members_.find(key);
    if (found == members_.end()) return std::nullopt;
    return fromJson(Json::parse(found->second, nullptr, false));
}

bool JsonUserDefaults::set(std::string_view key, Value value) {
    const std::lock_guard lock(mutex_);
    const FolderTurn turn(createdFolderOf(path_));
    reloadBeforeChange();
    members_.insert_or_assign(std::string(key), toJson(value).dump(-1, ' ', false, Json::error_handler_t::replace));
    return save();
}

bool JsonUserDefaults::remove(std::string_view key) {
    const std::lock_guard lock(mutex_);
    const FolderTurn turn(createdFolderOf(path_));
    reloadBeforeChange();
    const auto found = members_.find(key);
    if (found == members_.end()) return true;
    members_.erase(found);
    return save();
}

std::vector<std::string> JsonUserDefaults::keys() const {
    const std::lock_guard lock(mutex_);
    reloadIfChanged();
    std::vector<std::string> all;
    for (const auto& [key, member] : members_)
        all.push_back(key);
    return all;
}

std::optional<JsonUserDefaults::Version> JsonUserDefaults::fileVersion() const {
    struct stat info {};
    if (stat(path_.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
    return Version{info.st_mtim.tv_sec, info.st_mtim.tv_nsec, info.st_ino};
}

void JsonUserDefaults::reloadIfChanged() const {
    const auto version = fileVersion();
    // A file that is gone or out of reach takes no settings away from the running program.
    if (!version || version == version_) return;
    version_ = version;
    std::ifstream file(path_, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    const Json json = Json::parse(content, nullptr, false);
    unreadable_ = !json.is_object();
    if (unreadable_) return;
    members_.clear();
    for (const auto& [key, member] : json.items())
        members_.emplace(key, member.dump());
}

void JsonUserDefaults::reloadBeforeChange() {
    // What looks unchanged, too: a replacement within one tick of the clock may have got the old inode again.
    if (!unsaved_) version_.reset();
    reloadIfChanged();
}

bool JsonUserDefaults::save() {
    unsaved_ = !write();
    return !unsaved_;
}

bool JsonUserDefaults::write() {
    PosixFileSystem files;
    Json json = Json::object();
    for (const auto& [key, member] : members_)
        json[key] = Json::parse(member, nullptr, false);
    // A link of the user's stays, even when what it leads to is moved.
    const std::string file = files.canonicalPath(path_);
    if (unreadable_ && fileVersion() && !keepAside(files, file, path_ + ".unreadable")) return false;
    unreadable_ = false;
    if (!files.replaceAtomically(file, json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n")) return false;
    version_ = fileVersion();
    return true;
}

}  // namespace sunpane
