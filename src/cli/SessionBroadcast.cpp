#include "cli/SessionBroadcast.h"

#include <systemd/sd-bus.h>

#include <cstdint>

#include "base/AppIdentity.h"
#include "linux/players/SessionBus.h"

namespace sunpane::cli {
namespace {

constexpr std::uint64_t busPatience = 3'000'000;  // µs

}  // namespace

Broadcast broadcastToProgram(const std::string& name) {
    const BusConnection bus = openSessionBus();
    const auto dot = name.rfind('.');
    if (!bus || dot == std::string::npos) return Broadcast::noSession;
    sd_bus_set_method_call_timeout(bus.get(), busPatience);
    sd_bus_message* answer = nullptr;
    if (sd_bus_call_method(bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "NameHasOwner", nullptr, &answer, "s", std::string(appIdentifier).c_str()) < 0) {
        return Broadcast::noSession;
    }
    const BusMessage kept(answer);
    int hasOwner = 0;
    if (sd_bus_message_read(answer, "b", &hasOwner) < 0 || hasOwner == 0) return Broadcast::nobodyListens;
    if (sd_bus_emit_signal(bus.get(), "/", name.substr(0, dot).c_str(), name.substr(dot + 1).c_str(), "") < 0 ||
        sd_bus_flush(bus.get()) < 0) {
        return Broadcast::noSession;
    }
    return Broadcast::sent;
}

}  // namespace sunpane::cli
