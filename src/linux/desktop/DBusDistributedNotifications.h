#pragma once

#include "platform/DistributedNotifications.h"

namespace sunpane {

/// Broadcasts as signals on the D-Bus session bus: the name up to its last dot is the interface, the rest the member,
/// so that `dbus-send --session --type=signal / app.dawnly.Dawnly.expand` reaches the observers of that name. Sender
/// and object path do not matter.
class DBusDistributedNotifications : public DistributedNotifications {
public:
    Subscription observe(const std::string& name, std::function<void()> handler) override;
};

}  // namespace sunpane
