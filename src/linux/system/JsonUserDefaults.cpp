#include "linux/system/JsonUserDefaults.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

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

// Written beside the target and renamed over it, so that a reader or a crash never meets half a file.
bool replaceFile(const std::string& path, const std::string& content) {
    const std::string temporary = path + ".new";
    const int file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0) return false;
    const bool written = write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size());
    const bool kept = written && fsync(file) == 0;
    close(file);
    if (kept && rename(temporary.c_str(), path.c_str()) == 0) return true;
    unlink(temporary.c_str());
    return false;
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

void JsonUserDefaults::set(std::string_view key, Value value) {
    const std::lock_guard lock(mutex_);
    reloadIfChanged();
    members_.insert_or_assign(std::string(key), toJson(value).dump(-1, ' ', false, Json::error_handler_t::replace));
    save();
}

void JsonUserDefaults::remove(std::string_view key) {
    const std::lock_guard lock(mutex_);
    reloadIfChanged();
    const auto found = members_.find(key);
    if (found == members_.end()) return;
    members_.erase(found);
    save();
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

void JsonUserDefaults::save() {
    Json json = Json::object();
    for (const auto& [key, member] : members_)
        json[key] = Json::parse(member, nullptr, false);
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), ignored);
    if (unreadable_) {
        std::filesystem::rename(path_, path_ + ".unreadable", ignored);
        unreadable_ = false;
    }
    if (replaceFile(path_, json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n")) version_ = fileVersion();
}

}  // namespace sunpane
