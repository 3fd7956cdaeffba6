#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "linux/players/Deadline.h"
#include "linux/players/DevToolsEndpoint.h"
#include "linux/players/LoopbackClient.h"

namespace sunpane {

/// A conversation with a browser in the Chrome DevTools Protocol. One thread at a time.
class DevToolsSession {
public:
    struct Call {
        std::string method;
        nlohmann::json parameters;
        /// The page that is meant, by the identifier that attaching to it gave; empty for the browser itself.
        std::string page;
    };
    using Result = std::optional<nlohmann::json>;

    /// Null when no browser answers there.
    static std::unique_ptr<DevToolsSession> open(const DevToolsEndpoint& endpoint, Deadline deadline);

    /// Calls all at once and waits for every answer. What was refused, or not answered until `deadline`, is nothing.
    std::vector<Result> call(const std::vector<Call>& calls, Deadline deadline);
    Result call(Call one, Deadline deadline);

    /// Whether it is over: something was not answered in time, or what came was no DevTools message.
    bool broken() const { return broken_; }

private:
    explicit DevToolsSession(std::unique_ptr<loopback::WebSocket> socket) : socket_(std::move(socket)) {}

    std::unique_ptr<loopback::WebSocket> socket_;
    std::int64_t lastNumber_ = 0;
    bool broken_ = false;
};

/// A member of a JSON object as text; empty when there is none.
std::string textMember(const nlohmann::json& object, const char* name);

}  // namespace sunpane
