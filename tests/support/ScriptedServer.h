#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace sunpane::testing {

/// A server on this machine that does to its clients whatever a test wants, one client after the other.
class ScriptedServer {
public:
    class Client {
    public:
        Client(int handle, const std::atomic<bool>& ending) : handle_(handle), ending_(ending) {}

        /// What the client has said up to and with `mark`; less when it hung up.
        std::string readUntil(std::string_view mark) {
            std::string text;
            while (text.find(mark) == std::string::npos) {
                std::array<char, 1024> buffer{};
                if (!wait(POLLIN)) break;
                const auto count = recv(handle_, buffer.data(), buffer.size(), 0);
                if (count <= 0) break;
                text.append(buffer.data(), static_cast<std::size_t>(count));
            }
            return text;
        }

        /// False once the client has hung up.
        bool write(std::string_view bytes) {
            while (!bytes.empty()) {
                if (!wait(POLLOUT)) return false;
                const auto count = send(handle_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
                if (count <= 0) return false;
                bytes.remove_prefix(static_cast<std::size_t>(count));
            }
            return true;
        }

        /// Stays connected until the client hangs up.
        void stay() {
            std::array<char, 1024> buffer{};
            while (wait(POLLIN) && recv(handle_, buffer.data(), buffer.size(), 0) > 0) {
            }
        }

    private:
        bool wait(short events) const {
            while (!ending_) {
                pollfd source{handle_, events, 0};
                if (poll(&source, 1, 20) > 0) return (source.revents & (POLLERR | POLLNVAL)) == 0;
            }
            return false;
        }

        int handle_;
        const std::atomic<bool>& ending_;
    };

    explicit ScriptedServer(std::function<void(Client&)> serve)
        : serve_(std::move(serve)), handle_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (bind(handle_, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(handle_, 8) != 0 ||
            getsockname(handle_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
            return;
        }
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { run(); });
    }

    ~ScriptedServer() {
        ending_ = true;
        if (thread_.joinable()) thread_.join();
        close(handle_);
    }
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    /// 0 when the server could not be started.
    std::uint16_t port() const { return port_; }

private:
    void run() {
        while (!ending_) {
            pollfd source{handle_, POLLIN, 0};
            if (poll(&source, 1, 20) <= 0) continue;
            const int accepted = accept4(handle_, nullptr, nullptr, SOCK_CLOEXEC);
            if (accepted < 0) continue;
            Client client(accepted, ending_);
            serve_(client);
            close(accepted);
        }
    }

    std::function<void(Client&)> serve_;
    int handle_;
    std::uint16_t port_ = 0;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

}  // namespace sunpane::testing
