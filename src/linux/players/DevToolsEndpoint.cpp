#include "linux/players/DevToolsEndpoint.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <system_error>

#include "linux/system/PosixFileSystem.h"
#include "linux/system/XdgPaths.h"

namespace sunpane {
namespace {

constexpr std::size_t maximumPortFileBytes = 512;
constexpr std::string_view browserPrefix = "/devtools/browser/";

/// Whether somebody listens on that port of this machine. The kernel answers for the listener, so nobody is waited for.
bool isListening(std::uint16_t port) {
    const int handle = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (handle < 0) return false;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bool connected = connect(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (!connected && errno == EINPROGRESS) {
        pollfd writable{handle, POLLOUT, 0};
        int error = 0;
        socklen_t size = sizeof error;
        connected =
            poll(&writable, 1, 0) == 1 && getsockopt(handle, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
    }
    close(handle);
    return connected;
}

std::optional<DevToolsEndpoint> inProfile(const std::string& folder) {
    const auto file = PosixFileSystem().read(folder + "/DevToolsActivePort", maximumPortFileBytes);
    auto endpoint = parsePortFile(file.bytes);
    if (endpoint && !isListening(endpoint->port)) endpoint.reset();
    return endpoint;
}

}  // namespace

bool isBrowserPath(std::string_view path) {
    if (path.size() <= browserPrefix.size() || path.substr(0, browserPrefix.size()) != browserPrefix) return false;
    const auto own = path.substr(browserPrefix.size());
    return std::all_of(own.begin(), own.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-';
    });
}

std::optional<DevToolsEndpoint> parsePortFile(std::string_view content) {
    const auto lineEnd = content.find('\n');
    if (lineEnd == std::string_view::npos) return std::nullopt;
    const auto number = content.substr(0, lineEnd);
    auto path = content.substr(lineEnd + 1);
    if (!path.empty() && path.back() == '\n') path.remove_suffix(1);
    DevToolsEndpoint result{0, std::string(path)};
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), result.port);
    if (error != std::errc() || end != number.data() + number.size() || result.port == 0) return std::nullopt;
    if (!isBrowserPath(path)) return std::nullopt;
    return result;
}

std::optional<DevToolsEndpoint> findDevTools(const UserDefaults& defaults) {
    if (const auto chosen = defaults.read<std::int64_t>(chromePortKey).value) {
        if (*chosen < 1 || *chosen > 65535 || !isListening(static_cast<std::uint16_t>(*chosen))) return std::nullopt;
        return DevToolsEndpoint{static_cast<std::uint16_t>(*chosen), {}};
    }
    const std::string configurations = xdg::configHome();
    for (const char* profile : {"/google-chrome", "/chromium"}) {
        if (auto endpoint = inProfile(configurations + profile)) return endpoint;
    }
    return std::nullopt;
}

}  // namespace sunpane
