#include "linux/scripts/Interpreter.h"

#include <gtest/gtest.h>

#include <chrono>

#include "linux/scripts/Parser.h"
#include "nowplaying/PlayerScripts.h"
#include "support/ModelObjects.h"

namespace sunpane::scripts {
namespace {

std::string textOf(const std::optional<Value>& value) {
    if (!value) return "<failed>";
    if (const auto* text = std::get_if<std::string>(&*value)) return *text;
    if (const auto* flag = std::get_if<bool>(&*value)) return *flag ? "<true>" : "<false>";
    if (const auto* integer = std::get_if<std::int64_t>(&*value)) return std::to_string(*integer);
    return std::holds_alternative<std::monostate>(*value) ? "<nothing>" : "<object>";
}

TEST(Interpreter, ResultsOfScripts) {
    const struct {
        std::string_view source;
        const char* result;
    } cases[] = {
        {"", "<nothing>"},
        {"return 1 + 2 + 39", "42"},
        {"return \"a\" & 1 + 2 & \"b\"", "a3b"},
        {"return \"q\\\"b\\\\n\\n\" & \"\"", "q\"b\\n\n"},
        {"return (12 as text) is \"12\"", "<true>"},
        {"return 12 is \"12\"", "<false>"},
        {"return \"a\" & 1 as text is \"a1\"", "<true>"},
        {"Set X To 1\n\n  RETURN x\r\nreturn 2", "1"},
        {"set x to 5", "5"},
        {"set x to 1\nset x to x + x\nx", "2"},
        {"if 1 is 2 then return \"no\"\nreturn \"yes\"", "yes"},
        {"if 1 is 1 then\nif 2 is 2 then\nreturn \"deep\"\nend if\nend if\nreturn \"no\"", "deep"},
        {"set x to \"a\"\nset x to x & x & 1 & x", "aa1a"},
        {"set x to \"a\"\nset y to \"b\"\nset x to x & y & (x & y)\nreturn x & y",
         "abab"
         "b"},
        {"set x to \"a\"\nset y to x\nset x to x & \"b\"\ny", "a"},
        {"set x to 1\ntell application \"Google Chrome\"\nset x to \"kept\"\nrepeat with x in windows\n"
         "end repeat\nend tell",
         "kept"},
        {"output muted of (get volume settings)", "<false>"},
        {"set volume with output muted\noutput muted of (get volume settings)", "<true>"},
        {"tell application \"Spotify\" to playpause", "<nothing>"},
        {player_scripts::query(Player::spotify), "playing|||Song|||Band|||https://covers.example/1.jpg"},
        {player_scripts::scanTabs(),
         "1|||1|||1|||7|||https://a.example/|||A\n2|||1|||0|||8|||https://b.example/|||B\n"
         "2|||2|||1|||9|||https://c.example/|||C\n"},
    };
    for (const auto& test : cases) {
        auto host = sampleMachine();
        EXPECT_EQ(textOf(runScript(test.source, host)), test.result) << test.source;
    }
}

TEST(Interpreter, WhatIsNotTheLanguageDoesNothingAtAll) {
    const char* const broken[] = {
        "return",
        "return nonsense",
        "return x\nset x to 1",
        "set x to x",
        "set name to 1",
        "set tell to 1",
        "set stopped to 1",
        "set next track to 1",
        "return \"open",
        "return \"line\nbreak\"",
        "return \"\\t\"",
        "return 12a",
        "return 99999999999999999999",
        "return 1 - 1",
        "return (1",
        "return 1)",
        "return 1 return 2",
        "return \"a\" &",
        "return player",
        "set volume with output",
        "set volume 5",
        "if 1 then",
        "repeat with t in tabs of",
        "tell application Spotify to playpause",
        "end tell",
        "tell application \"Spotify\"",
        "tell application \"Spotify\"\nend repeat",
        "beep",
        "do shell script \"true\"",
        "execute \"x\"",
        "\xc3\xa9",
    };
    for (const char* source : broken) {
        auto host = sampleMachine();
        const auto script = "tell application \"Spotify\" to playpause\n" + std::string(source);
        EXPECT_FALSE(parseScript(script)) << source;
        EXPECT_FALSE(runScript(script, host)) << source;
        EXPECT_TRUE(host.applications["Spotify"]->performed.empty()) << source;
    }
}

TEST(Interpreter, AFailureEndsTheScriptWhereItHappens) {
    const char* const failing[] = {
        "tell application \"Nobody\" to playpause",
        "playpause",
        "player state",
        "tell application \"Spotify\" to windows",
        "tell application \"Spotify\"\nreturn name of player state\nend tell",
        "tell application \"Google Chrome\"\nrepeat with w in windows\nset title of w to 1\nend repeat\nend tell",
        "tell application \"Spotify\"\nset t to current track\nexecute t javascript \"1\"\nend tell",
        "repeat with w in 12\nend repeat",
        "if 1 then return 2",
        "return 1 & 2",
        "set x to 1\nset x to x & 2",
        "return \"a\" + 1",
        "return 9223372036854775807 + 1",
        "return (1 is 1) as text",
        "if 1 is 2 then set x to 1\nreturn x",
        "return \"\" & (get volume settings)",
    };
    for (const char* source : failing) {
        auto host = sampleMachine();
        const auto script =
            "set volume with output muted\n" + std::string(source) + "\nset volume without output muted";
        ASSERT_TRUE(parseScript(script)) << source;
        EXPECT_FALSE(runScript(script, host)) << source;
        const auto settings = std::get<ObjectPointer>(host.volume->properties[Term::volumeSettings]);
        EXPECT_EQ(settings->get(Term::outputMuted), Value(true)) << source;
    }
    auto host = sampleMachine();
    host.applications["Spotify"]->obeys = false;
    EXPECT_FALSE(runScript("tell application \"Spotify\" to next track\nreturn 1", host));
    EXPECT_EQ(host.applications["Spotify"]->performed, std::vector{Verb::nextTrack});
}

TEST(Interpreter, ActsOnTheTabThatItLookedFor) {
    auto host = sampleMachine();
    const auto windows = std::get<ObjectList>(host.applications["Google Chrome"]->properties[Term::windows]);
    const auto tab = std::dynamic_pointer_cast<ModelObject>(std::get<ObjectList>(*windows[1]->get(Term::tabs))[0]);
    tab->javaScriptResult = "ok";
    EXPECT_EQ(textOf(runScript(player_scripts::runInTab(8, "f('x')"), host)), "ok");
    EXPECT_EQ(tab->executed, std::vector<std::string>{"f('x')"});
    EXPECT_EQ(textOf(runScript(player_scripts::runInTab(5, "f('x')"), host)), "gone");
    EXPECT_EQ(textOf(runScript(player_scripts::showTab(8), host)), "ok");
    EXPECT_EQ(windows[1]->get(Term::activeTabIndex), Value(std::int64_t{1}));
    EXPECT_EQ(windows[1]->get(Term::index), Value(std::int64_t{1}));
    EXPECT_EQ(host.applications["Google Chrome"]->performed, std::vector{Verb::activate});
}

TEST(Interpreter, NestingStepsAndTextAreBounded) {
    auto host = sampleMachine();
    const auto nested = [](int depth) {
        return "return " + std::string(static_cast<std::size_t>(depth), '(') + "1" +
               std::string(static_cast<std::size_t>(depth), ')');
    };
    EXPECT_EQ(textOf(runScript(nested(20), host)), "1");
    EXPECT_FALSE(runScript(nested(10'000), host));
    std::string gets = "return ";
    for (int i = 0; i < 10'000; ++i)
        gets += "get ";
    EXPECT_FALSE(runScript(gets + "1", host));
    EXPECT_FALSE(runScript(std::string(maximumSourceBytes + 1, ' '), host));

    std::string doubling = "set x to \"aaaaaaaaaaaaaaaa\"\n";
    for (int i = 0; i < 30; ++i)
        doubling += "set x to x & x\n";
    EXPECT_FALSE(runScript(doubling, host));

    // A loop in a loop in a loop over 300 tabs: 27 million rounds.
    const auto many = std::make_shared<ModelObject>();
    many->properties[Term::tabs] = ObjectList(300, host.volume);
    host.applications["Many"] = many;
    EXPECT_FALSE(
        runScript("tell application \"Many\"\nrepeat with a in tabs\nrepeat with b in tabs\n"
                  "repeat with c in tabs\nend repeat\nend repeat\nend repeat\nend tell",
                  host));

    host.stepsLeft = 50;
    EXPECT_FALSE(runScript("tell application \"Many\"\nrepeat with a in tabs\nend repeat\nend tell", host));
}

// Copying the text for each of these lines would move hundreds of gigabytes.
TEST(Interpreter, ATextThatGrowsLineByLineTakesLinearTime) {
    ModelHost host;
    const auto many = std::make_shared<ModelObject>();
    many->properties[Term::tabs] = ObjectList(150'000, host.volume);
    host.applications["Many"] = many;
    const auto start = std::chrono::steady_clock::now();
    const auto text =
        textOf(runScript("tell application \"Many\"\nset out to \"\"\nrepeat with a in tabs\n"
                         "set out to out & \"01234567890123456789\"\nend repeat\nreturn out\nend tell",
                         host));
    EXPECT_EQ(text.size(), 3'000'000U);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

}  // namespace
}  // namespace sunpane::scripts
