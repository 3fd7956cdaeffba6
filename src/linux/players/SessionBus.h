#pragma once

#include <systemd/sd-bus.h>

#include <memory>
#include <string>

#include "linux/players/Deadline.h"

namespace sunpane {

struct BusMessageRelease {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using BusMessage = std::unique_ptr<sd_bus_message, BusMessageRelease>;

struct BusSlotRelease {
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
using BusSlot = std::unique_ptr<sd_bus_slot, BusSlotRelease>;

struct BusRelease {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
using BusConnection = std::unique_ptr<sd_bus, BusRelease>;

/// A connection of our own to the session bus; null when there is none. Returns before the bus has answered.
BusConnection openSessionBus();

/// Where every media player has its object, and the interface that controls it.
inline constexpr const char* playerPath = "/org/mpris/MediaPlayer2";
inline constexpr const char* playerInterface = "org.mpris.MediaPlayer2.Player";

/// Calls to other programs that wait no longer than they are allowed to, not even for a bus that does not answer. One
/// thread at a time.
class SessionBus {
public:
    /// A call of `member` on a player's object. Null when there is no bus.
    BusMessage playerCall(const std::string& name, const char* interface, const char* member);

    /// Sends and waits for the answer. Null without one until `deadline`, and when the answer is an error.
    BusMessage call(sd_bus_message* message, Deadline deadline);

private:
    /// Null until needed and after it broke; then opened anew for the next call.
    BusConnection bus_;
};

}  // namespace sunpane
