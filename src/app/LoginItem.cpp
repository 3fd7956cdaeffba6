#include "app/LoginItem.h"

namespace sunpane {

LoginItem::LoginItem(const ApplicationBundle& bundle, LoginService& service, UserDefaults& defaults)
    : bundle_(bundle), service_(service), defaults_(defaults) {}

bool LoginItem::isAvailable() const {
    return bundle_.path().ends_with(".app");
}

void LoginItem::registerOnFirstRun() {
    if (!isAvailable() || defaults_.read<bool>(didAttemptKey).valueOr(false)) return;
    defaults_.set(didAttemptKey, true);
    service_.setEnabled(true);
}

void LoginItem::followMove() {
    if (isAvailable() && service_.startsAnotherCopy()) service_.setEnabled(true);
}

bool LoginItem::isEnabled() const {
    return isAvailable() && service_.isEnabled();
}

std::optional<std::string> LoginItem::set(bool enabled) {
    return isAvailable() ? service_.setEnabled(enabled) : std::nullopt;
}

}  // namespace sunpane
