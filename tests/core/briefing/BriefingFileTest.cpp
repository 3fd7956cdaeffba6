#include "core/briefing/BriefingFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "core/briefing/BriefingJson.h"
#include "support/TemporaryFolder.h"

namespace sunpane {
namespace {

using ::testing::Field;
using ::testing::Optional;

const LocalCalendar amsterdam("Europe/Amsterdam", "en_US");

std::string dayIn(const LocalCalendar& calendar, std::string_view name) {
    const auto date = briefing::dateFromName(name, calendar);
    return date ? calendar.iso8601(*date) : "none";
}

TEST(BriefingFile, FindsTheDayInAName) {
    const std::pair<const char*, const char*> cases[] = {
        {"2026-11-16", "2026-11-16T00:00:00+01:00"},
        {"notes 2026-11-16 final", "2026-11-16T00:00:00+01:00"},
        {"12026-11-16", "2026-11-16T00:00:00+01:00"},
        {"2026-11-161", "2026-11-16T00:00:00+01:00"},
        {"x\u0662\u0660\u0662\u0666-\u0967\u0967-16", "2026-11-16T00:00:00+01:00"},
        {"2028-02-29", "2028-02-29T00:00:00+01:00"},
        {"2026-02-29", "none"},
        {"2026-13-01 2026-11-16", "none"},
        {"2026-11-6", "none"},
        {"2026-1116", "none"},
        {"", "none"},
    };
    for (const auto& [name, day] : cases)
        EXPECT_EQ(dayIn(amsterdam, name), day) << name;
    // The clocks of these two skip midnight on the day.
    EXPECT_EQ(dayIn(LocalCalendar("America/Sao_Paulo", "pt_BR"), "2018-11-04"), "2018-11-04T01:00:00-02:00");
    EXPECT_EQ(dayIn(LocalCalendar("America/Asuncion", "es_PY"), "2021-10-03"), "2021-10-03T01:00:00-03:00");
    EXPECT_EQ(dayIn(LocalCalendar("Asia/Kolkata", "hi_IN"), "2026-11-16"), "2026-11-16T00:00:00+05:30");
}

TEST(BriefingFile, KnowsMarkdownByItsExtension) {
    for (const char* name : {"a.md", "A.MD", "b.c.Md", ".hidden.md", "a\n.md"})
        EXPECT_TRUE(briefing::isMarkdownName(name)) << name;
    for (const char* name : {".md", "md", "a.md.icloud", "a.mdx", "a.md ", "a.txt", ""}) {
        EXPECT_FALSE(briefing::isMarkdownName(name)) << name;
    }
    EXPECT_EQ(briefing::stem("a.b.md"), "a.b");
    EXPECT_EQ(briefing::stem(".md"), ".md");
}

TEST(BriefingFile, ReadsTextAndRefusesOtherBytes) {
    const Instant modified = Instant::fromUnix(1795305600.5);
    const auto parse = [&](std::string_view name, std::string bytes) {
        return briefing::parseText(name, {std::move(bytes), modified}, amsterdam);
    };
    EXPECT_EQ(parse("readme.md", "# T\nx"), (Briefing{"readme.md", modified, "T", "x"}));
    EXPECT_THAT(parse("a.md", "\xEF\xBB\xBF# T"), Optional(Field(&Briefing::title, "T")));
    EXPECT_THAT(parse("\xFF"
                      "2026-11-16.md",
                      ""),
                Optional(Field(&Briefing::id, "\uFFFD2026-11-16.md")));
    for (const char* bytes : {"caf\xE9", "\xFF\xFE#\x01", "long enough to be read in words \xC3"}) {
        EXPECT_EQ(parse("2026-11-16.md", bytes), std::nullopt);
    }
}

TEST(BriefingFile, ReadsRegularFilesOnly) {
    const testing::TemporaryFolder folder;
    folder.write("real.md", "# Real");
    folder.write("secret.md", "# Secret");
    chmod((folder / "secret.md").c_str(), 0);
    std::filesystem::create_directory(folder / "folder.md");
    std::filesystem::create_symlink("real.md", folder / "link.md");
    std::filesystem::create_symlink("nowhere", folder / "dangling.md");
    std::filesystem::create_symlink("loop.md", folder / "loop.md");
    std::filesystem::create_symlink("/dev/zero", folder / "device.md");
    ASSERT_EQ(mkfifo((folder / "pipe.md").c_str(), 0600), 0);

    for (const char* name : {"real.md", "link.md"}) {
        EXPECT_THAT(briefing::parseFile(folder / name, amsterdam), Optional(Field(&Briefing::title, "Real")));
    }
    for (const char* name : {"folder.md", "dangling.md", "loop.md", "device.md", "pipe.md", "missing.md"}) {
        EXPECT_EQ(briefing::parseFile(folder / name, amsterdam), std::nullopt) << name;
    }
    if (geteuid() != 0) {
        EXPECT_EQ(briefing::parseFile(folder / "secret.md", amsterdam), std::nullopt);
    }
}

TEST(BriefingFile, ReadsALargeFileWhole) {
    constexpr std::size_t size = 100'000'000;
    const testing::TemporaryFolder folder;
    folder.write("2026-11-16.md", "# Large\n" + std::string(size, 'x'));
    const auto briefing = briefing::parseFile(folder / "2026-11-16.md", amsterdam);
    ASSERT_TRUE(briefing);
    EXPECT_EQ(briefing->markdown.size(), size);
    EXPECT_EQ(briefing->sections().size(), 1U);
}

TEST(BriefingJson, HoldsEverythingInOrderOnOneLine) {
    const Briefing briefing{"2026-11-16.md", *briefing::dateFromName("2026-11-16", amsterdam), "T",
                            "intro\n- a \u009B\u007F\x1B[2J \u20AC\n### Action Items\n- [ ] WRK b\n- [x] c"};
    EXPECT_EQ(
        toJson(briefing, amsterdam),
        R"({"id":"2026-11-16.md","date":"2026-11-16T00:00:00+01:00","dateLabel":"Monday 16 Nov","title":"T",)"
        R"("markdown":"intro\n- a \u009b\u007f\u001b[2J €\n### Action Items\n- [ ] WRK b\n- [x] c",)"
        R"("sections":[{"id":0,"title":"Overview","intro":"intro","items":[{"id":"a-2j","markdown":"a \u009b\u007f\u001b[2J €",)"
        R"("suggestedTodoText":"a \u009b\u007f\u001b[2J €"}]}],)"
        R"("actionItems":[{"text":"b","tag":"WRK","done":false},{"text":"c","tag":null,"done":true}]})");
}

}  // namespace
}  // namespace sunpane
