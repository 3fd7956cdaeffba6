#pragma once

#include <optional>
#include <string>

namespace sunpane {

/// The desktop's list of programs that start with the user's session. Main thread only.
class LoginService {
public:
    virtual ~LoginService() = default;

    /// Whether this program is in the list, not switched off there, and where the list says that it is.
    virtual bool isEnabled() const = 0;

    /// Whether the entry in the list is on and leads to another copy of the program than this one, though it may be
    /// gone.
    virtual bool startsAnotherCopy() const = 0;

    /// Puts this program into the list or takes it out. What the user added to an entry that is there stays. Nothing on
    /// success, otherwise what went wrong, in a sentence.
    virtual std::optional<std::string> setEnabled(bool enabled) = 0;
};

}  // namespace sunpane
