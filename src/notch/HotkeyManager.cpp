#include "notch/HotkeyManager.h"

#include "base/NotificationNames.h"

namespace sunpane {

HotkeyManager::HotkeyManager(Hotkeys* hotkeys, const UserDefaults& defaults, const LocalNotifications& notifications)
    : hotkeys_(hotkeys), defaults_(defaults), notifications_(notifications) {}

bool HotkeyManager::isEnabled(const UserDefaults& defaults) {
    return defaults.read<bool>(enabledKey).valueOr(true);
}

void HotkeyManager::registerAnew() {
    // Given up first: while the old registration holds the key, a new one is refused.
    registration_.cancel();
    if (hotkeys_ == nullptr || !isEnabled(defaults_)) return;
    registration_ = hotkeys_->registerControlSpace([this] { notifications_.post(notification::quickCapture); });
}

}  // namespace sunpane
