#pragma once

#include <optional>
#include <string>

namespace sunpane {

/// The desktop's list of programs that start with the user's session. Main thread only.
class LoginService {
public:
    virtual ~LoginService() = default;

    /// Whether this program is in the list and not switched off there.
    virtual bool isEnabled() const = 0;

    /// Whether the entry in the list starts another copy of the program than this one.
    virtual bool startsAnotherCopy() const = 0;

    /// Puts this program into the list or takes it out. Nothing on success, otherwise what went wrong, in a sentence.
    virtual std::optional<std::string> setEnabled(bool enabled) = 0;
};

}  // namespace sunpane
