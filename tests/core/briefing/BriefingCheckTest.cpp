#include "core/briefing/BriefingCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// "3 a control character", cut to as many characters as the expectation has.
std::vector<std::string> findings(std::string_view name, std::string_view bytes) {
    std::vector<std::string> result;
    for (const auto& finding : briefing::check(name, bytes, LocalCalendar("Europe/Amsterdam", "en_US"))) {
        result.push_back(std::to_string(finding.line) + " " + finding.message);
    }
    return result;
}

TEST(BriefingCheck, HasNothingToSayAboutAGoodBriefing) {
    EXPECT_THAT(findings("2026-11-16.md",
                         "\xEF\xBB\xBF# Morning Briefing, Monday 16 November\r\n\r\n"
                         "Two meetings and a deadline.\r\n\r\n"
                         "### 📅 Today's Schedule\r\n"
                         "An easy morning: the [agenda](https://example.org) is short.\r\n"
                         "- 10:00 **Standup** — room 2\r\n"
                         "- 14:00 Design review\r\n"
                         "  with the new mocks\r\n"
                         "---\r\n"
                         "**🔥 Hot topics**\r\n"
                         "- #42 is fixed, -5 degrees and *none* of 3 left\r\n"
                         "### ✅ Action Items\r\n"
                         "- [ ] 💼 Send the deck\r\n"
                         "- [x] PRSNL Call mum\r\n"
                         "### 🌙 Evening\r\n"
                         "- Pack for tomorrow\r\n"),
                IsEmpty());
}

TEST(BriefingCheck, FindsWhatWillNotShowAsMeant) {
    struct Case {
        std::string body;  // below "# T", so its first line is line 2
        std::vector<std::string> starts;
    };
    const Case cases[] = {
        {"# Second", {"2 a heading has two to four"}},
        {"### A\nx\n##### Deep\n###Glued\n###",
         {"4 a heading has", "5 a heading needs a space", "6 a heading without"}},
        {"### - Standup\ntext", {"2 a heading that swallows a bullet"}},
        {"### A\n- **Done**\ntext", {"2 an empty section", "3 a bullet that is only a bold phrase"}},
        {"**" + std::string(90, 'x') + "**", {"2 a bold line beyond"}},
        {"### A\n* star\n+ plus\n1. one\n12) two\n\u2013 dash\n-glued\n-**glued** x\n-",
         {"3 no card", "4 no card", "5 no card", "6 no card", "7 no card", "8 a bullet needs", "9 a bullet needs",
          "10 an empty bullet"}},
        {"### A\n***\n- - -\n```\ncode", {"3 only \"---\"", "4 only \"---\"", "5 a code fence"}},
        {"### A\n- [ ] early\n- card\n- [ ] glued\n[ ] bare",
         {"3 a checkbox outside", "5 a checkbox is glued", "6 a checkbox is glued"}},
        {"### A\n- [maybe] later\n- [link](https://x) to\n- [open\n- [ ]\n- [x]  ",
         {"3 a checkbox is \"[ ]\"", "4 a bullet that begins with a link", "5 a bullet that begins with \"[\"",
          "6 a checkbox without", "7 a checkbox without"}},
        {"### Action Items\n- plain\ntext\n* [ ] star\n- [ ] N/A\n- [ ] a\n- [ ] 💼 a",
         {"3 a bullet among", "4 text among", "5 no action item", "6 a filler action item",
          "8 the same action item as on line 7"}},
        {"### A\n- None.\n### B\nn/a\n### C\n- Nothing to report", {"3 a filler", "5 a filler", "7 a filler"}},
        {"### A\n- Reply to **Bob**\n### B\n- reply, to bob\n- 🔥",
         {"5 the same card as on line 3", "6 a card without a letter"}},
        {"### A\n\n### B\n- x\n### C\n---\n", {"2 an empty section", "6 an empty section"}},
        {"### A\n- parent\n  - child\nparagraph\n  indented", {"4 an indented bullet", "5 text is glued"}},
        {"### A\n- " + std::string(599, 'x') + "\n  y", {"3 a card beyond 600"}},
        {"### A\n- one **two\n- a\x1B[2Jb", {"3 a \"**\" without", "4 a control character"}},
    };
    for (const auto& c : cases) {
        auto found = findings("2026-11-16.md", "# T\n" + c.body);
        for (std::size_t i = 0; i < found.size() && i < c.starts.size(); ++i)
            found[i].resize(std::min(found[i].size(), c.starts[i].size()));
        EXPECT_EQ(found, c.starts) << c.body;
    }
}

TEST(BriefingCheck, SaysWhatIsBeyondWhatThePanelShows) {
    std::string sections = "# T\n### Recap\nx\n### Action Items\n- [ ] y\n";
    for (int i = 0; i < 100; ++i)
        sections += "### Section\ntext\n";
    EXPECT_THAT(findings("2026-11-16.md", sections), IsEmpty());
    EXPECT_THAT(findings("2026-11-16.md", sections + "### One more\nx\n### And another\nx"),
                ElementsAre("206 more than 100 sections; from here on they are not shown"));
    std::string cards = "# T\n### A\n";
    for (int i = 0; i < 200; ++i)
        cards += "- card " + std::to_string(i) + "\n";
    EXPECT_THAT(findings("2026-11-16.md", cards + "### B\n- x"), IsEmpty());
    EXPECT_THAT(findings("2026-11-16.md", cards + "- one more\n- and another"),
                ElementsAre("203 more than 200 cards in a section; from here on they are not shown"));
}

TEST(BriefingCheck, LooksAtTitleNameAndEncoding) {
    EXPECT_THAT(findings("2026-11-16.md", ""), ElementsAre("1 the file is empty"));
    EXPECT_THAT(findings("2026-11-16.md", "\n\ntext"),
                ElementsAre("3 no title: the first line should be \"# \" and the title"));
    EXPECT_THAT(findings("2026-11-16.md", "\r\n### A\r\n- x"),
                ElementsAre("2 the first heading becomes the title and opens no section; put a \"# \" title above it"));
    EXPECT_THAT(findings("2026-11-16.md", "#"), ElementsAre("1 the title is empty"));
    EXPECT_THAT(findings("2026-13-16.md", "# T"), ElementsAre("1 the file name holds no day such as 2026-11-16"));
    EXPECT_THAT(findings("2026-11-16.txt", "# T"),
                ElementsAre("1 the file name does not end in \".md\"; the file is ignored"));
    EXPECT_THAT(findings("2026-11-16.md", "# T\n\xC3\n"), ElementsAre("2 not UTF-8; the whole file is ignored"));
    EXPECT_THAT(findings("2026-11-16.md", "# T\n\nend \xE2\x82"),
                ElementsAre("3 not UTF-8; the whole file is ignored"));
}

}  // namespace
}  // namespace sunpane
