#include <systemd/sd-bus.h>

#include <cstdint>
#include <cstdio>
#include <string>

namespace {

int answer(sd_bus_message* call, void* /*userData*/, sd_bus_error* /*error*/) {
    const char* key = nullptr;
    sd_bus_message* reply = nullptr;
    if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Properties", "Get") > 0) {
        return sd_bus_reply_method_return(call, "v", "s", "Paused");
    }
    if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Properties", "GetAll") <= 0) return 0;
    if (sd_bus_message_read(call, "s", &key) < 0 || sd_bus_message_new_method_return(call, &reply) < 0) return 0;
    sd_bus_message_append(reply, "a{sv}", 2, "PlaybackStatus", "s", "Paused", "Metadata", "a{sv}", 3, "xesam:title",
                          "s", "A song", "xesam:artist", "as", 1, "A band", "mpris:artUrl", "s",
                          "https://covers.example/1.jpg");
    const int sent = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return sent < 0 ? sent : 1;
}

}  // namespace

// A paused media player on the session bus, under the name that is its argument, which plays nothing.
int main(int argc, char** argv) {
    sd_bus* bus = nullptr;
    if (argc != 2 || sd_bus_open_user(&bus) < 0) return 2;
    const std::string name = std::string("org.mpris.MediaPlayer2.") + argv[1];
    if (sd_bus_add_object(bus, nullptr, "/org/mpris/MediaPlayer2", answer, nullptr) < 0) return 2;
    if (sd_bus_request_name(bus, name.c_str(), 0) < 0) return 2;
    std::puts("there");
    std::fflush(stdout);
    int processed = 0;
    while ((processed = sd_bus_process(bus, nullptr)) >= 0) {
        if (processed == 0 && sd_bus_wait(bus, UINT64_MAX) < 0) break;
    }
    sd_bus_unref(bus);
    return 0;
}
