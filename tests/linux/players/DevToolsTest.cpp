#include <gtest/gtest.h>

#include <array>
#include <boost/beast/core/detail/base64.hpp>
#include <boost/beast/core/detail/sha1.hpp>
#include <string>

#include "linux/players/ChromeBrowser.h"
#include "linux/players/DevToolsEndpoint.h"
#include "linux/players/DevToolsSession.h"
#include "linux/players/LoopbackClient.h"
#include "support/ScriptedServer.h"
#include "support/SimulatedUserDefaults.h"

namespace sunpane {
namespace {

namespace beast = boost::beast;
using std::chrono::milliseconds;
using testing::ScriptedServer;
using testing::SimulatedUserDefaults;
using Client = ScriptedServer::Client;

TEST(DevToolsEndpoint, ReadsThePortFileOfAProfile) {
    const auto endpoint = parsePortFile("45889\n/devtools/browser/f9039400-6bf4-41af\n");
    ASSERT_TRUE(endpoint);
    EXPECT_EQ(endpoint->port, 45889);
    EXPECT_EQ(endpoint->browserPath, "/devtools/browser/f9039400-6bf4-41af");
    EXPECT_EQ(parsePortFile("45889\n/devtools/browser/f9039400-6bf4-41af"), endpoint);
    for (const char* content :
         {"", "45889", "45889\n", "0\n/devtools/browser/a", "65536\n/devtools/browser/a", "-1\n/devtools/browser/a",
          " 1\n/devtools/browser/a", "1x\n/devtools/browser/a", "1\n/devtools/browser/", "1\n/devtools/page/a",
          "1\n/devtools/browser/../a", "1\n/devtools/browser/a b", "1\n/devtools/browser/a\nb\n",
          "1\r\n/devtools/browser/a"}) {
        EXPECT_FALSE(parsePortFile(content)) << content;
    }
}

// Whatever listens on the port: it is given up at the deadline, and takes no more memory than the bound.
TEST(LoopbackClient, OutlastsEveryServer) {
    const struct {
        const char* name;
        std::function<void(Client&)> serve;
    } servers[] = {{"silent", [](Client& client) { client.stay(); }},
                   {"closes at once", [](Client&) {}},
                   {"closes after the question", [](Client& client) { client.readUntil("\r\n\r\n"); }},
                   {"speaks something else",
                    [](Client& client) {
                        client.write("SSH-2.0-OpenSSH_9.2\r\n");
                        client.stay();
                    }},
                   {"endless header",
                    [](Client& client) {
                        client.write("HTTP/1.1 200 OK\r\n");
                        while (client.write("X-Header: 0123456789\r\n")) {
                        }
                    }},
                   {"endless body",
                    [](Client& client) {
                        client.readUntil("\r\n\r\n");
                        client.write("HTTP/1.1 200 OK\r\n\r\n");
                        while (client.write(std::string(65536, 'x'))) {
                        }
                    }},
                   {"huge length",
                    [](Client& client) {
                        client.readUntil("\r\n\r\n");
                        client.write("HTTP/1.1 200 OK\r\nContent-Length: 99999999999\r\n\r\n");
                        client.stay();
                    }},
                   {"trickle",
                    [](Client& client) {
                        client.readUntil("\r\n\r\n");
                        client.write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
                        while (client.write("x"))
                            std::this_thread::sleep_for(milliseconds(10));
                    }},
                   {"refuses", [](Client& client) {
                        client.readUntil("\r\n\r\n");
                        client.write("HTTP/1.1 404 Not Found\r\nContent-Length: 2\r\n\r\nno");
                        client.stay();
                    }}};
    for (const auto& test : servers) {
        const ScriptedServer server(test.serve);
        ASSERT_NE(server.port(), 0);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(loopback::httpGet(server.port(), "/json/list", deadlineIn(milliseconds(250)))) << test.name;
        EXPECT_FALSE(loopback::WebSocket::open(server.port(), "/devtools/browser/a", deadlineIn(milliseconds(250))))
            << test.name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(5000)) << test.name;
    }
    EXPECT_FALSE(loopback::httpGet(1, "/", deadlineIn(milliseconds(250))));
}

TEST(LoopbackClient, TakesAWholeAnswer) {
    const ScriptedServer server([](Client& client) {
        const auto question = client.readUntil("\r\n\r\n");
        const bool asked = question.find("GET /json/list HTTP/1.1\r\n") == 0 &&
                           question.find("Host: 127.0.0.1:") != std::string::npos &&
                           question.find("Origin:") == std::string::npos;
        client.write("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n");
        client.write(asked ? "yes" : "no!");
    });
    EXPECT_EQ(loopback::httpGet(server.port(), "/json/list", deadlineIn(milliseconds(2000))), "yes");
}

// A port that looks like a browser at first, and answers every question with something that is none of the protocol.
TEST(ChromeBrowser, HasNoWindowsBehindAPortThatIsSomethingElse) {
    for (const std::string& body :
         {std::string("[]"), std::string("not JSON"), std::string("{}"), std::string(2'000'000, '['),
          std::string(R"({"webSocketDebuggerUrl": 5})"), std::string(R"({"webSocketDebuggerUrl": "ws://h/other"})"),
          std::string(R"({"webSocketDebuggerUrl": "ws://h/devtools/browser/a"})")}) {
        const ScriptedServer server([&](Client& client) {
            const auto question = client.readUntil("\r\n\r\n");
            if (question.empty()) return;
            client.write("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        });
        SimulatedUserDefaults defaults;
        defaults.set(chromePortKey, static_cast<std::int64_t>(server.port()));
        ChromeBrowser browser(defaults);
        EXPECT_FALSE(browser.windows(deadlineIn(milliseconds(2000)))) << body.substr(0, 60);
        EXPECT_FALSE(browser.execute("A", "1", deadlineIn(milliseconds(2000)))) << body.substr(0, 60);
        EXPECT_FALSE(browser.show("A", deadlineIn(milliseconds(2000)))) << body.substr(0, 60);
    }
    SimulatedUserDefaults defaults;
    for (const std::int64_t port : {-1, 0, 65536, 1}) {
        defaults.set(chromePortKey, port);
        EXPECT_FALSE(findDevTools(defaults)) << port;
    }
}

/// Lets a WebSocket client in, as RFC 6455 has it.
void greet(Client& client) {
    const auto question = client.readUntil("\r\n\r\n");
    const std::string name = "Sec-WebSocket-Key: ";
    const auto start = question.find(name);
    if (start == std::string::npos) return;
    const auto key = question.substr(start + name.size(), question.find("\r\n", start) - start - name.size());
    beast::detail::sha1_context context;
    beast::detail::init(context);
    const std::string salted = key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11";
    beast::detail::update(context, salted.data(), salted.size());
    std::array<char, 20> digest{};
    beast::detail::finish(context, digest.data());
    std::string accept(beast::detail::base64::encoded_size(digest.size()), '\0');
    accept.resize(beast::detail::base64::encode(accept.data(), digest.data(), digest.size()));
    client.write(
        "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
        "Sec-WebSocket-Accept: " +
        accept + "\r\n\r\n");
}

/// A whole text message of the server's.
std::string frame(const std::string& text) {
    // The length in as few bytes as it needs, or the client would refuse it for that.
    const int bytes = text.size() < 126 ? 1 : text.size() < 65536 ? 2 : 8;
    std::string result("\x81", 1);
    if (bytes > 1) result += static_cast<char>(bytes == 2 ? 126 : 127);
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        result += static_cast<char>((text.size() >> shift) & 0xff);
    return result + text;
}

// One that lets us in as a browser does, and then does something else: nothing is made of it, and its time is bounded.
TEST(DevToolsSession, OutlastsWhateverLetsItIn) {
    const struct {
        const char* name;
        std::string message;
        bool forever;
        bool breaks;
    } servers[] = {
        {"silent", "", false, true},
        {"not JSON", frame("hello"), false, true},
        {"no object", frame("[1, 2]"), false, true},
        {"deep", frame(std::string(1'000'000, '[')), false, true},
        {"too long", frame(std::string(loopback::maximumBytes + 1, ' ')), false, true},
        {"a broken frame", "\xff\xff\xff\xff", false, true},
        {"events without end", frame(R"({"method": "Target.targetCreated"})"), true, true},
        {"answers to others", frame(R"({"id": 77, "result": {}})") + frame(R"({"id": -1, "result": {}})"), true, true},
        {"an answer of another type", frame(R"({"id": "1", "result": {}})"), true, true},
        {"an error", frame(R"({"id": 1, "error": {"message": "no"}})"), false, false},
    };
    for (const auto& test : servers) {
        const ScriptedServer server([&](Client& client) {
            greet(client);
            while (client.write(test.message) && test.forever) {
            }
            client.stay();
        });
        const auto start = std::chrono::steady_clock::now();
        const auto session =
            DevToolsSession::open({server.port(), "/devtools/browser/a"}, deadlineIn(milliseconds(2000)));
        ASSERT_TRUE(session) << test.name;
        EXPECT_FALSE(session->call({"Browser.getVersion", nlohmann::json::object(), {}}, deadlineIn(milliseconds(250))))
            << test.name;
        EXPECT_EQ(session->broken(), test.breaks) << test.name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(5000)) << test.name;
    }
}

}  // namespace
}  // namespace sunpane
