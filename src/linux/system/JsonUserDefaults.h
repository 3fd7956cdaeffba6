#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/UserDefaults.h"

namespace sunpane {

/// Settings in one JSON object, a member for each key, replaced as a whole by every write. Another process's writes
/// are seen at the next reading, and processes that write take turns, so that none undoes what another just wrote. A
/// file that is not such an object counts as empty, and is kept beside the new one under a name that says so before the
/// first write replaces it.
class JsonUserDefaults : public UserDefaults {
public:
    explicit JsonUserDefaults(std::string path);

    /// `$XDG_CONFIG_HOME/dawnly/defaults.json`
    static std::string defaultPath();

    std::optional<Value> value(std::string_view key) const override;
    bool set(std::string_view key, Value value) override;
    bool remove(std::string_view key) override;
    std::vector<std::string> keys() const override;

private:
    // What tells one version of the file from the next.
    struct Version {
        std::int64_t seconds = 0;
        std::int64_t nanoseconds = 0;
        std::uint64_t inode = 0;
        friend bool operator==(const Version&, const Version&) = default;
    };

    void reloadIfChanged() const;
    void reloadBeforeChange();
    bool save();
    bool write();
    std::optional<Version> fileVersion() const;

    std::string path_;
    mutable std::mutex mutex_;
    // Each value as JSON text, so that members that no `Value` can hold survive a write untouched.
    mutable std::map<std::string, std::string, std::less<>> members_;
    mutable std::optional<Version> version_;
    mutable bool unreadable_ = false;
    bool unsaved_ = false;  // the memory knows of a choice that could not be written
};

}  // namespace sunpane
