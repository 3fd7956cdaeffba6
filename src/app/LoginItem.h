#pragma once

#include <optional>
#include <string>

#include "platform/ApplicationBundle.h"
#include "platform/LoginService.h"
#include "platform/UserDefaults.h"

namespace sunpane {

/// Starting with the user's session. Only an installed program does: one that was just built has no place of its own.
/// One instance, owned by the start-up code; main thread only.
class LoginItem {
public:
    static constexpr std::string_view didAttemptKey = "didAttemptLoginItemRegistration";

    /// Everything outlives it.
    LoginItem(const ApplicationBundle& bundle, LoginService& service, UserDefaults& defaults);

    bool isAvailable() const;

    /// Registers the program, once in a user's life: whoever takes it out again is not asked a second time.
    void registerOnFirstRun();

    /// Leads an entry that starts another copy to this one: the program was moved. One that is off stays off.
    void followMove();

    bool isEnabled() const;

    /// What went wrong, or nothing. Does nothing where it is not available.
    std::optional<std::string> set(bool enabled);

private:
    const ApplicationBundle& bundle_;
    LoginService& service_;
    UserDefaults& defaults_;
};

}  // namespace sunpane
