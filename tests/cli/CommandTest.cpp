#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "cli/Command.h"
#include "cli/TerminalText.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "support/CommandFixture.h"
#include "support/TemporaryFolder.h"

namespace sunpane::cli {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class CommandTest : public testing::CommandFixture {
protected:
    int run(std::vector<std::string> arguments, bool onTerminal = false) {
        Environment surroundings = environment();
        surroundings.outIsTerminal = onTerminal;
        return runIn(std::move(surroundings), arguments);
    }

    testing::TemporaryFolder folder;
};

TEST_F(CommandTest, BriefShowsAFileOrTheNewestOfAFolder) {
    folder.write("2026-11-15.md", "# Old");
    folder.write("2026-11-16.md", "# New\n### A\nintro\n- **One** `x`\n  more\n### Action Items\n- [x] WRK Send");
    const std::string text = "New\nMonday 16 Nov\n\nA\n  intro\n  • One x more\n\nAction items\n  [x] Send (WRK)\n";
    EXPECT_EQ(run({"brief", folder.path()}), success);
    EXPECT_EQ(out.str(), text);
    EXPECT_EQ(run({"brief", folder / "2026-11-15.md"}), success);
    EXPECT_EQ(out.str(), "Old\nSunday 15 Nov\n");
    defaults.set(FolderBriefingProvider::folderDefaultsKey, folder.path());
    EXPECT_EQ(run({"brief"}), success);
    EXPECT_EQ(out.str(), text);
    EXPECT_EQ(run({"brief", folder.path()}, true), success);
    EXPECT_THAT(out.str(), HasSubstr("  • \x1B[1mOne\x1B[22m x more\n"));
    EXPECT_EQ(run({"brief", "--json", folder.path()}), success);
    EXPECT_THAT(out.str(), StartsWith(R"({"id":"2026-11-16.md","date":"2026-11-16T00:00:00+01:00",)"));
    EXPECT_EQ(out.str().find('\n'), out.str().size() - 1);
}

TEST_F(CommandTest, BriefWithNothingToShowSaysSoInOneLine) {
    folder.write("latin.md", "caf\xE9");
    for (const auto& path : {folder.path(), folder / "latin.md", folder / "mis\nsing\x1B"}) {
        EXPECT_EQ(run({"brief", path}), negative) << path;
        EXPECT_EQ(out.str(), "");
        EXPECT_EQ(err.str().find('\n'), err.str().size() - 1) << err.str();
        EXPECT_EQ(err.str().find('\x1B'), std::string::npos);
    }
}

TEST_F(CommandTest, NoControlCharacterReachesTheTerminal) {
    folder.write("2026-11-16.md",
                 "# T\x1B]0;x\x07\n### A\u009B2J\nin\ttro\x08\n- c\x1B[31m**b\x7F**\u202Egpj\n- [ ] d\x1B[0m");
    for (const auto& arguments :
         {std::vector<std::string>{"brief", folder.path()}, {"brief", "--json", folder.path()}}) {
        EXPECT_EQ(run(arguments), success);
        for (const char* raw : {"\x1B", "\x07", "\x08", "\x7F", "\u009B"})
            EXPECT_EQ(out.str().find(raw), std::string::npos);
    }
    EXPECT_EQ(escapedName("a\nb\x1B\xFF\u009B"), "a\\nb\\x1B\uFFFD\\xC2\\x9B");
}

TEST_F(CommandTest, CheckReportsByFileAndLine) {
    folder.write("2026-11-15.md", "# T\n### A\n- fine\n");
    EXPECT_EQ(run({"check", folder.path()}), success);
    EXPECT_EQ(out.str(), "");
    folder.write("2026-11-16\n.md", "# T\n### A\n* star\n");
    EXPECT_EQ(run({"check", folder.path()}), negative);
    EXPECT_EQ(out.str(), folder.path() + "/2026-11-16\\n.md:3: no card: write the bullet with \"- \"\n");
    folder.write("2026-11-17.md", "# \xFF");
    EXPECT_EQ(run({"check", folder.path()}), failure);
    EXPECT_THAT(out.str(), HasSubstr("/2026-11-17.md:1: not UTF-8"));
    EXPECT_EQ(run({"check", folder / "2026-11-15.md"}), success);
    EXPECT_EQ(run({"check", folder / "missing.md"}), failure);
    std::filesystem::create_directory(folder / "folder.md");
    EXPECT_EQ(run({"check", folder / "folder.md"}), success);
    EXPECT_EQ(run({"check", folder.path()}), failure);
}

TEST_F(CommandTest, WatchPrintsALineForEachDelivery) {
    platform.time.jumpWallClock(Instant::fromUnix(1795305600.25));
    interrupt.meanwhile = [&] {
        EXPECT_TRUE(interrupt.isArmed);
        folder.write("2026-11-15.md", "# T");
        folder.write("2026-11-16.md", "# T");
        events.tell(folder.path(), "2026-11-16.md");
        platform.time.advance(0.5);
    };
    EXPECT_EQ(run({"watch", folder.path()}), success);
    EXPECT_EQ(out.str(),
              "{\"at\":1795305600.25,\"briefings\":[]}\n"
              "{\"at\":1795305600.65,\"briefings\":[\"2026-11-16.md\",\"2026-11-15.md\"]}\n");
    EXPECT_EQ(platform.time.pendingCount(), 0U);
    EXPECT_EQ(run({"watch", folder / "typo"}), failure);
    EXPECT_FALSE(std::filesystem::exists(folder / "typo"));
}

TEST_F(CommandTest, WrongUsageIsAFailureThatShowsTheRightOne) {
    const std::vector<std::vector<std::string>> cases = {
        {},        {"nonsense"},        {"brief", "--yaml"}, {"brief", "a", "b"},
        {"check"}, {"check", "a", "b"}, {"watch", "a", "b"}};
    for (const auto& arguments : cases) {
        EXPECT_EQ(run(arguments), failure);
        EXPECT_EQ(out.str(), "");
        EXPECT_NE(err.str(), "");
    }
    for (const auto& arguments : {std::vector<std::string>{"--help"},
                                  {"-h"},
                                  {"--version"},
                                  {"-v"},
                                  {"check", "--help"},
                                  {"todo", "-h"},
                                  {"todo", "add", "x", "--help"}}) {
        EXPECT_EQ(run(arguments), success);
        EXPECT_THAT(out.str(), HasSubstr("dawnlyctl"));
    }
    EXPECT_EQ(run({"check", "--", "--help"}), failure) << "a file of that name, which is not there";
    EXPECT_EQ(out.str(), "");
}

}  // namespace
}  // namespace sunpane::cli
