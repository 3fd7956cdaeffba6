#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "cli/Command.h"
#include "cli/ProgramCommand.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "notch/StateReport.h"
#include "support/CommandFixture.h"

namespace sunpane::cli {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

// The commands that speak to the running program, and those on its settings.
class ProgramCommandTest : public testing::CommandFixture {
protected:
    ProgramCommandTest() { disk.makeFolder("/tmp"); }
    int run(std::vector<std::string> arguments) {
        Environment surroundings = environment();
        surroundings.wait = [this](Seconds time) { waited += time, meanwhile(); };
        surroundings.broadcast = [this](const std::string& name) {
            broadcasts.push_back(name);
            return reachable;
        };
        surroundings.choices = choices;
        return runIn(std::move(surroundings), arguments);
    }

    Broadcast reachable = Broadcast::sent;
    std::vector<std::string> broadcasts;
    std::map<std::string, std::vector<std::string>> choices;
    Seconds waited = 0;
    std::function<void()> meanwhile = [] {};
};

TEST_F(ProgramCommandTest, ExpandTellsTheProgramOrSaysThatNoneRuns) {
    EXPECT_EQ(run({"expand"}), success);
    EXPECT_THAT(broadcasts, ElementsAre("app.dawnly.Dawnly.expand"));
    reachable = Broadcast::nobodyListens;
    EXPECT_EQ(run({"expand"}), negative);
    EXPECT_EQ(err.str(), "dawnlyctl expand: dawnly is not running\n");
    reachable = Broadcast::noSession;
    EXPECT_EQ(run({"report"}), negative);
    EXPECT_THAT(err.str(), HasSubstr("session bus"));
    EXPECT_EQ(run({"expand", "now"}), failure);
}

TEST_F(ProgramCommandTest, ReportPrintsTheNewAnswerAndNeverTheLastOne) {
    disk.writeExternally(StateReport::path, "{\"old\":1}");
    EXPECT_EQ(run({"report"}), negative);
    EXPECT_EQ(out.str(), "");
    EXPECT_THAT(err.str(), HasSubstr("does not answer"));
    EXPECT_NEAR(waited, reportTries * reportPoll, 2 * reportPoll);

    int polls = 0;
    meanwhile = [&] {
        if (++polls == 3) disk.writeExternally(StateReport::path, "{\"new\":\"\x1B[2J\"}");
    };
    EXPECT_EQ(run({"report"}), success);
    EXPECT_EQ(polls, 3);
    EXPECT_THAT(out.str(), HasSubstr("{\"new\":"));
    EXPECT_THAT(out.str(), Not(HasSubstr("\x1B")));
}

TEST_F(ProgramCommandTest, PromptsNameTheChosenFolder) {
    defaults.set(FolderBriefingProvider::folderDefaultsKey, std::string("/home/you/briefs"));
    EXPECT_EQ(run({"prompt", "delivery"}), success);
    EXPECT_THAT(out.str(), HasSubstr("=== DELIVER TO DAWNLY ===\n"));
    EXPECT_THAT(out.str(), HasSubstr("\n/home/you/briefs/\n"));
    const std::string delivery = out.str();
    for (const char* which : {"morning", "evening"}) {
        EXPECT_EQ(run({"prompt", which, "--folder", "/srv/b"}), success);
        EXPECT_THAT(out.str(), HasSubstr("/srv/b/"));
        EXPECT_NE(out.str(), delivery);
    }
    EXPECT_EQ(run({"prompt", "delivery", "--folder", "some/../briefs/"}), success);
    EXPECT_THAT(out.str(), HasSubstr('\n' + std::filesystem::current_path().string() + "/briefs/\n"));
    for (const auto& wrong : std::vector<std::vector<std::string>>{
             {"prompt"}, {"prompt", "noon"}, {"prompt", "morning", "evening"}, {"prompt", "morning", "--json"}}) {
        EXPECT_EQ(run(wrong), failure);
        EXPECT_EQ(out.str(), "");
    }
}

TEST_F(ProgramCommandTest, TheFolderInTheSettingsIsTheSameForEveryProgram) {
    const std::string here = std::filesystem::current_path().string();
    setenv("HOME", "/home/you", 0);
    const std::string home = std::getenv("HOME");
    for (const auto& [given, kept] : std::vector<std::pair<std::string, std::string>>{{"briefs", here + "/briefs"},
                                                                                      {"./briefs/", here + "/briefs"},
                                                                                      {"~/briefs", home + "/briefs"},
                                                                                      {"/srv/b", "/srv/b"},
                                                                                      {"/", "/"},
                                                                                      {"", ""}}) {
        EXPECT_EQ(run({"defaults", "write", "briefingsFolderPath", given}), success);
        EXPECT_EQ(defaults.read<std::string>("briefingsFolderPath").value, kept) << given;
    }
}

TEST_F(ProgramCommandTest, TheProgramHearsOfEveryChangeAndTheUserOfWhatTakesAStart) {
    EXPECT_EQ(run({"defaults", "write", "notchTheme", "dark"}), success);
    EXPECT_EQ(run({"defaults", "read", "notchTheme"}), success);
    EXPECT_EQ(run({"defaults", "delete", "notchTheme"}), success);
    EXPECT_THAT(broadcasts, ElementsAre("app.dawnly.Dawnly.settings", "app.dawnly.Dawnly.settings"));
    EXPECT_EQ(err.str(), "");
    EXPECT_EQ(run({"defaults", "write", "notchHeight", "--float", "32"}), success);
    EXPECT_THAT(err.str(), HasSubstr("started the next time"));
    reachable = Broadcast::nobodyListens;
    EXPECT_EQ(run({"defaults", "delete", "notchHeight"}), success);
    EXPECT_EQ(err.str(), "") << "nobody has to start anything";
}

TEST_F(ProgramCommandTest, DefaultsKeepTheTypeThatWasSaid) {
    using Value = UserDefaults::Value;
    const struct {
        std::vector<std::string> words;
        Value value;
        const char* plain;
    } cases[] = {
        {{"/home/you"}, std::string("/home/you"), "/home/you\n"},
        {{"--string", "7"}, std::string("7"), "7\n"},
        {{"--bool", "yes"}, true, "true\n"},
        {{"--bool", "false"}, false, "false\n"},
        {{"--int", "-3"}, std::int64_t{-3}, "-3\n"},
        {{"--float", "0.25"}, 0.25, "0.25\n"},
        {{"--array", "a b", "c"}, std::vector<std::string>{"a b", "c"}, "a b\nc\n"},
        {{"--array"}, std::vector<std::string>{}, ""},
        {{"--", "--bool"}, std::string("--bool"), "--bool\n"},
    };
    for (const auto& [words, value, plain] : cases) {
        std::vector<std::string> arguments{"defaults", "write", "key"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        defaults.values.clear();
        EXPECT_EQ(run(arguments), success) << err.str();
        EXPECT_EQ(defaults.value("key"), value);
        EXPECT_EQ(run({"defaults", "read", "key"}), success);
        EXPECT_EQ(out.str(), plain);
    }
}

TEST_F(ProgramCommandTest, DefaultsRefuseWhatTheProgramWouldNotUnderstand) {
    defaults.set("flag", true);
    const std::vector<std::vector<std::string>> cases = {{"write", "flag", "true"},  // would become a text
                                                         {"write", "n", "--int", "1.5"},
                                                         {"write", "n", "--int", "9223372036854775808"},
                                                         {"write", "n", "--float", "inf"},
                                                         {"write", "n", "--float", "1x"},
                                                         {"write", "n", "--bool", "maybe"},
                                                         {"write", "n"},
                                                         {"write", "n", "two", "words"},
                                                         {"write"},
                                                         {"read", "a", "b"},
                                                         {"read", "--bool", "flag"},
                                                         {"delete"},
                                                         {"delete", "--json", "flag"},
                                                         {"rename", "a"},
                                                         {"read", "--yaml"},
                                                         {}};
    for (auto arguments : cases) {
        arguments.insert(arguments.begin(), "defaults");
        EXPECT_EQ(run(arguments), failure);
        EXPECT_EQ(out.str(), "");
    }
    EXPECT_EQ(defaults.values.size(), 1U);
    EXPECT_EQ(defaults.read<bool>("flag").valueOr(false), true);
}

TEST_F(ProgramCommandTest, DefaultsTakeOneOfAFewValuesWhereThereAreNoOthers) {
    choices["shape"] = {"round", "square"};
    EXPECT_EQ(run({"defaults", "write", "shape", "round"}), success);
    for (const std::vector<std::string>& wrong :
         {std::vector<std::string>{"banana"}, {"Round"}, {""}, {"--int", "1"}, {"--array", "square"}}) {
        std::vector<std::string> arguments{"defaults", "write", "shape"};
        if (wrong.size() == 1) arguments.emplace_back("--string");
        arguments.insert(arguments.end(), wrong.begin(), wrong.end());
        EXPECT_EQ(run(arguments), negative);
        EXPECT_EQ(err.str(), "dawnlyctl defaults: shape takes one of round square\n");
        EXPECT_EQ(defaults.read<std::string>("shape").valueOr(""), "round");
    }
    EXPECT_EQ(broadcasts.size(), 1U);
    EXPECT_EQ(run({"defaults", "write", "colour", "banana"}), success);
}

TEST_F(ProgramCommandTest, DefaultsListAndDelete) {
    defaults.set("b", std::string("\u009B\"x"));
    defaults.set("a", 0.5);
    EXPECT_EQ(run({"defaults", "read"}), success);
    EXPECT_EQ(out.str(), "a = 0.5\nb = \"\\u009b\\\"x\"\n");
    EXPECT_EQ(run({"defaults", "read", "--json"}), success);
    EXPECT_EQ(out.str(), "{\"a\":0.5,\"b\":\"\\u009b\\\"x\"}\n");
    EXPECT_EQ(run({"defaults", "read", "b"}), success);
    EXPECT_THAT(out.str(), Not(HasSubstr("\u009B")));
    EXPECT_EQ(run({"defaults", "delete", "b"}), success);
    EXPECT_EQ(run({"defaults", "read", "b"}), negative);
    EXPECT_EQ(err.str(), "dawnlyctl defaults: b is not set\n");
    defaults.isWritable = false;
    EXPECT_EQ(run({"defaults", "write", "a", "--float", "1"}), failure);
    EXPECT_EQ(run({"defaults", "delete", "a"}), failure);
    EXPECT_THAT(err.str(), HasSubstr("cannot be written"));
}

}  // namespace
}  // namespace sunpane::cli
