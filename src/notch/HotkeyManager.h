#pragma once

#include "base/LocalNotifications.h"
#include "base/Subscription.h"
#include "platform/Hotkeys.h"
#include "platform/UserDefaults.h"

namespace sunpane {

/// Keeps Control+Space registered while the user wants it, and posts "quickCapture" at each press. When another
/// program owns the key, nothing else suffers.
///
/// One instance, owned by the start-up code. Main thread only.
class HotkeyManager {
public:
    static constexpr const char* enabledKey = "quickCaptureEnabled";

    /// `hotkeys` is null on a desktop without system-wide keys.
    HotkeyManager(Hotkeys* hotkeys, const UserDefaults& defaults, const LocalNotifications& notifications);

    /// The user's setting; on unless it was switched off.
    static bool isEnabled(const UserDefaults& defaults);

    /// Gives the key up and, if the user wants it, asks for it anew. For the start, and after each change of the
    /// setting.
    void registerAnew();

private:
    Hotkeys* hotkeys_;
    const UserDefaults& defaults_;
    const LocalNotifications& notifications_;
    Subscription registration_;
};

}  // namespace sunpane
