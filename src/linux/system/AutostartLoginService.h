#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LoginService.h"

namespace sunpane {

/// A desktop entry in the session's autostart folder (Desktop Application Autostart Specification 0.5). Main thread
/// only.
class AutostartLoginService : public LoginService {
public:
    /// `folder` is the autostart folder, `program` the absolute path of what to start.
    AutostartLoginService(std::string folder, std::string program);

    /// `$XDG_CONFIG_HOME/autostart`
    static std::string defaultFolder();

    bool isEnabled() const override;
    bool startsAnotherCopy() const override;
    std::optional<std::string> setEnabled(bool enabled) override;

private:
    // The file's lines, without the ends that another system may have given them.
    struct Entry {
        bool isThere = false;
        std::vector<std::string> own;     // what says how we start, without its header, and what comes before that
        std::vector<std::string> others;  // further groups, such as a menu's actions, each with its header
    };

    Entry read() const;
    bool startsUs(std::string_view command) const;
    // What starts this program, with whatever the entry's own command has before and after it.
    std::string command(const Entry& entry) const;

    std::string folder_;
    std::string path_;
    std::string program_;
};

}  // namespace sunpane
