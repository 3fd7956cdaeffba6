#include "cli/SessionBroadcast.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <chrono>
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

ProgramAnswer askProgram(const StoreChange& change, Seconds patience) {
    using Reach = ProgramAnswer::Reach;
    const BusConnection bus = openSessionBus();
    sd_bus_message* made = nullptr;
    const bool isTodo = change.subject == StoreChange::Subject::todo;
    if (!bus || sd_bus_message_new_method_call(bus.get(), &made, std::string(appIdentifier).c_str(),
                                               std::string(appObjectPath).c_str(), std::string(appIdentifier).c_str(),
                                               isTodo ? "ChangeTodo" : "ChangeFlag") < 0) {
        return {};
    }
    const BusMessage call(made);
    if (sd_bus_message_set_auto_start(call.get(), 0) < 0 ||
        sd_bus_message_append(call.get(), "ssssd", change.folder.c_str(), change.verb.c_str(), change.id.c_str(),
                              change.text.c_str(), change.expires.unixTime()) < 0) {
        return {};
    }
    using SteadyClock = std::chrono::steady_clock;
    const auto end = SteadyClock::now() + std::chrono::duration<double>(patience);
    sd_bus_message* got = nullptr;
    const int called = sd_bus_call(bus.get(), call.get(), static_cast<std::uint64_t>(patience * 1e6), nullptr, &got);
    // A program that ends meanwhile gives the same error as one that is silent, only earlier.
    if (called < 0) return {SteadyClock::now() < end ? Reach::nobody : Reach::silent, {}};
    const BusMessage reply(got);
    const char* outcome = nullptr;
    std::uint32_t number = 0;
    const char* todo = "";
    if (sd_bus_message_read(reply.get(), "s", &outcome) < 0) return {};
    if (isTodo && sd_bus_message_read(reply.get(), "us", &number, &todo) < 0) return {};
    const auto* const known = std::find(storeChangeOutcomes.begin(), storeChangeOutcomes.end(), outcome);
    if (known == storeChangeOutcomes.end()) return {};
    return {Reach::answered,
            {static_cast<StoreChangeAnswer::Outcome>(known - storeChangeOutcomes.begin()), number, todo}};
}

}  // namespace sunpane::cli
