#include "linux/players/DevToolsSession.h"

#include <cstddef>
#include <utility>

namespace sunpane {
namespace {

using nlohmann::json;

json parse(const std::string& text) {
    return json::parse(text, nullptr, false);
}

/// The browser's own path behind its address, as in "ws://127.0.0.1:9222/devtools/browser/…".
std::string browserPathIn(const std::string& address) {
    const auto path = address.find("/devtools/");
    if (path == std::string::npos) return {};
    return isBrowserPath(std::string_view(address).substr(path)) ? address.substr(path) : std::string();
}

}  // namespace

std::string textMember(const json& object, const char* name) {
    if (!object.is_object()) return {};
    const auto member = object.find(name);
    return member != object.end() && member->is_string() ? member->get<std::string>() : std::string();
}

std::unique_ptr<DevToolsSession> DevToolsSession::open(const DevToolsEndpoint& endpoint, Deadline deadline) {
    std::string path = endpoint.browserPath;
    if (path.empty()) {
        const auto version = loopback::httpGet(endpoint.port, "/json/version", deadline);
        if (version) path = browserPathIn(textMember(parse(*version), "webSocketDebuggerUrl"));
    }
    if (path.empty()) return nullptr;
    auto socket = loopback::WebSocket::open(endpoint.port, path, deadline);
    if (!socket) return nullptr;
    return std::unique_ptr<DevToolsSession>(new DevToolsSession(std::move(socket)));
}

std::vector<DevToolsSession::Result> DevToolsSession::call(const std::vector<Call>& calls, Deadline deadline) {
    std::vector<Result> results(calls.size());
    const std::int64_t first = lastNumber_ + 1;
    for (const auto& one : calls) {
        json message{{"id", ++lastNumber_}, {"method", one.method}, {"params", one.parameters}};
        if (!one.page.empty()) message["sessionId"] = one.page;
        broken_ = broken_ || !socket_->send(message.dump(-1, ' ', false, json::error_handler_t::replace), deadline);
    }
    std::vector<bool> answered(calls.size());
    for (std::size_t missing = calls.size(); missing > 0 && !broken_;) {
        const auto text = socket_->receive(deadline);
        json message = text ? parse(*text) : json();
        broken_ = !message.is_object();
        if (broken_) break;
        // What has no number is an event, and none of those is of interest.
        const auto number = message.find("id");
        if (number == message.end() || !number->is_number_integer()) continue;
        const auto value = number->get<std::int64_t>();
        if (value < first || value > lastNumber_) continue;
        const auto index = static_cast<std::size_t>(value - first);
        if (answered[index]) continue;
        answered[index] = true;
        --missing;
        const auto result = message.find("result");
        if (result != message.end()) results[index] = std::move(*result);
    }
    return results;
}

DevToolsSession::Result DevToolsSession::call(Call one, Deadline deadline) {
    return std::move(call(std::vector{std::move(one)}, deadline).front());
}

}  // namespace sunpane
