#include "linux/players/SessionBus.h"

#include <cerrno>
#include <cstdint>

namespace sunpane {
namespace {

struct Answer {
    bool arrived = false;
    BusMessage message;
};

int keepAnswer(sd_bus_message* message, void* userData, sd_bus_error* /*error*/) {
    auto& answer = *static_cast<Answer*>(userData);
    answer.arrived = true;
    if (sd_bus_message_is_method_error(message, nullptr) == 0) answer.message.reset(sd_bus_message_ref(message));
    return 0;
}

}  // namespace

BusConnection openSessionBus() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) return nullptr;
    return BusConnection(bus);
}

BusMessage SessionBus::playerCall(const std::string& name, const char* interface, const char* member) {
    if (bus_ && sd_bus_is_open(bus_.get()) <= 0) bus_.reset();
    if (!bus_) bus_ = openSessionBus();
    if (!bus_) return nullptr;
    sd_bus_message* message = nullptr;
    if (sd_bus_message_new_method_call(bus_.get(), &message, name.c_str(), playerPath, interface, member) < 0) {
        return nullptr;
    }
    BusMessage result(message);
    // Who left in the meantime is not started again by being asked.
    sd_bus_message_set_auto_start(message, 0);
    return result;
}

BusMessage SessionBus::call(sd_bus_message* message, Deadline deadline) {
    if (!bus_ || message == nullptr) return nullptr;
    Answer answer;
    sd_bus_slot* newSlot = nullptr;
    const auto time = static_cast<std::uint64_t>(timeLeft(deadline).count());
    if (time == 0 || sd_bus_call_async(bus_.get(), &newSlot, message, keepAnswer, &answer, time) < 0) return nullptr;
    // Cancels the call when the answer has not come by the end of this function.
    const BusSlot slot(newSlot);
    while (!answer.arrived) {
        const int processed = sd_bus_process(bus_.get(), nullptr);
        if (processed < 0) return nullptr;
        if (processed > 0) continue;
        const auto left = static_cast<std::uint64_t>(timeLeft(deadline).count());
        if (left == 0) return nullptr;
        const int waited = sd_bus_wait(bus_.get(), left);
        if (waited < 0 && waited != -EINTR) return nullptr;
    }
    return std::move(answer.message);
}

}  // namespace sunpane
