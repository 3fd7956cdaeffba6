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
    // The lines of the entry; none without a readable one.
    std::vector<std::string> lines() const;
    bool startsUs(std::string_view command) const;
    // What starts this program, with whatever the entry's own command has before and after it.
    std::string command(const std::vector<std::string>& entry) const;

    std::string folder_;
    std::string path_;
    std::string program_;
};

}  // namespace sunpane
