#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "linux/players/Deadline.h"

/// HTTP and WebSocket to a server on this machine, which may be anything that happens to listen there: nothing waits
/// longer than its deadline, and nothing takes in more than a bound.
namespace sunpane::loopback {

/// A longer body or message fails.
inline constexpr std::size_t maximumBytes = std::size_t{8} << 20;

/// The body of the answer to a GET; nothing unless it is a whole answer with status 200.
std::optional<std::string> httpGet(std::uint16_t port, const std::string& path, Deadline deadline);

/// A WebSocket connection. One thread at a time. Once an operation has failed, all further ones do.
class WebSocket {
public:
    /// Null when nobody there speaks WebSocket.
    static std::unique_ptr<WebSocket> open(std::uint16_t port, const std::string& path, Deadline deadline);

    virtual ~WebSocket() = default;

    virtual bool send(std::string_view text, Deadline deadline) = 0;
    /// The next message.
    virtual std::optional<std::string> receive(Deadline deadline) = 0;
};

}  // namespace sunpane::loopback
