#include "linux/players/LoopbackClient.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

namespace sunpane::loopback {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using Tcp = asio::ip::tcp;

constexpr std::uint32_t maximumHeaderBytes = 16 * 1024;

std::string hostName(std::uint16_t port) {
    return "127.0.0.1:" + std::to_string(port);
}

/// Runs one operation at a time to its end, or until its deadline, which costs the connection.
class Operations {
public:
    asio::io_context& context() { return context_; }

    /// `start` begins the operation with the handler that it is given. False when the operation failed.
    template <class Start>
    bool run(Tcp::socket& socket, Deadline deadline, Start start) {
        std::optional<beast::error_code> outcome;
        start([&outcome](beast::error_code error, auto&&... /*unused*/) { outcome = error; });
        context_.restart();
        context_.run_until(deadline);
        if (!outcome) {
            // The operation ends with an error as soon as its socket is closed, and only then lets go of what it uses.
            beast::error_code ignored;
            socket.close(ignored);
            context_.restart();
            context_.run();
            return false;
        }
        return !*outcome;
    }

    bool connect(Tcp::socket& socket, std::uint16_t port, Deadline deadline) {
        return run(socket, deadline, [&](auto handler) {
            socket.async_connect({asio::ip::address_v4::loopback(), port}, std::move(handler));
        });
    }

private:
    asio::io_context context_{1};
};

class BeastWebSocket : public WebSocket {
public:
    bool begin(std::uint16_t port, const std::string& path, Deadline deadline) {
        if (!operations_.connect(stream_.next_layer(), port, deadline)) return false;
        stream_.read_message_max(maximumBytes);
        const std::string host = hostName(port);
        return run(deadline, [&](auto handler) { stream_.async_handshake(host, path, std::move(handler)); });
    }

    bool send(std::string_view text, Deadline deadline) override {
        return run(deadline, [&](auto handler) {
            stream_.async_write(asio::buffer(text.data(), text.size()), std::move(handler));
        });
    }

    std::optional<std::string> receive(Deadline deadline) override {
        beast::flat_buffer buffer;
        if (!run(deadline, [&](auto handler) { stream_.async_read(buffer, std::move(handler)); })) return std::nullopt;
        return beast::buffers_to_string(buffer.data());
    }

private:
    template <class Start>
    bool run(Deadline deadline, Start start) {
        works_ = works_ && operations_.run(stream_.next_layer(), deadline, std::move(start));
        return works_;
    }

    Operations operations_;
    websocket::stream<Tcp::socket> stream_{operations_.context()};
    bool works_ = true;
};

}  // namespace

std::optional<std::string> httpGet(std::uint16_t port, const std::string& path, Deadline deadline) {
    Operations operations;
    Tcp::socket socket(operations.context());
    if (!operations.connect(socket, port, deadline)) return std::nullopt;
    http::request<http::empty_body> request(http::verb::get, path, 11);
    request.set(http::field::host, hostName(port));
    request.keep_alive(false);
    if (!operations.run(socket, deadline,
                        [&](auto handler) { http::async_write(socket, request, std::move(handler)); })) {
        return std::nullopt;
    }
    beast::flat_buffer buffer;
    http::response_parser<http::string_body> parser;
    parser.header_limit(maximumHeaderBytes);
    parser.body_limit(maximumBytes);
    if (!operations.run(socket, deadline,
                        [&](auto handler) { http::async_read(socket, buffer, parser, std::move(handler)); })) {
        return std::nullopt;
    }
    if (parser.get().result() != http::status::ok) return std::nullopt;
    return std::move(parser.get().body());
}

std::unique_ptr<WebSocket> WebSocket::open(std::uint16_t port, const std::string& path, Deadline deadline) {
    auto socket = std::make_unique<BeastWebSocket>();
    if (!socket->begin(port, path, deadline)) return nullptr;
    return socket;
}

}  // namespace sunpane::loopback
