#include <gtest/gtest.h>

#include <string>

#include "linux/players/ChromeBrowser.h"
#include "linux/players/DevToolsEndpoint.h"
#include "linux/players/LoopbackClient.h"
#include "support/ScriptedServer.h"
#include "support/SimulatedUserDefaults.h"

namespace sunpane {
namespace {

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

}  // namespace
}  // namespace sunpane
