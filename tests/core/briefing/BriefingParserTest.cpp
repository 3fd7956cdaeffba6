#include "core/briefing/BriefingParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include <random>

#include "base/Text.h"
#include "core/briefing/ItemKey.h"
#include "core/briefing/PlainBriefing.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// "title | intro | card | card", to compare a whole outline at once.
std::vector<std::string> outline(std::string_view markdown) {
    std::vector<std::string> result;
    for (const auto& section : briefing::sections(markdown)) {
        std::string line = std::to_string(section.id) + " " + section.title + " | " + section.intro;
        for (const auto& item : section.items)
            line.append(" | ").append(item.markdown());
        result.push_back(line);
    }
    return result;
}

constexpr std::string_view workedExample =
    "# Morning Briefing, Monday 16 November\n"
    "\n"
    "### 📅 Today's Schedule\n"
    "- 10:00 **Standup**\n"
    "- 14:00 Design review\n"
    "  with the new mocks\n"
    "### ✅ Action Items\n"
    "- [ ] 💼 Send the deck\n"
    "- [x] PRSNL Call mum\n";

TEST(BriefingParser, ReadsAWholeBriefing) {
    const auto document = briefing::splitDocument(workedExample);
    EXPECT_EQ(document.title, "Morning Briefing, Monday 16 November");
    EXPECT_THAT(outline(document.markdown),
                ElementsAre("0 📅 Today's Schedule |  | 10:00 **Standup** | 14:00 Design review with the new mocks"));
    EXPECT_EQ(briefing::sections(document.markdown)[0].items[0].id(), "10-00-standup");
    EXPECT_THAT(briefing::actionItems(document.markdown), ElementsAre(BriefingActionItem{"Send the deck", "WRK", false},
                                                                      BriefingActionItem{"Call mum", "PRSNL", true}));
}

TEST(BriefingParser, TakesTheFirstHeadingAsTitle) {
    struct Case {
        const char* text;
        const char* title;
        const char* markdown;
    };
    const Case cases[] = {
        {"", "Morning Briefing", ""},
        {" \n\t\n", "Morning Briefing", ""},
        {"no heading\n# later", "Morning Briefing", "no heading\n# later"},
        {"\r\n ## Evening \r\n\r\ntext\r\n", "Evening", "text"},
        {"######x\ny", "x", "y"},
        {"#\ny", "", "y"},
        {"#\u0301 x", "Morning Briefing", "#\u0301 x"},
        {"# t\u2028\u2029 a\r\nb\u0085c \u2029", "t", "a\n\nb\nc"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(briefing::splitDocument(c.text), (briefing::Document{c.title, c.markdown})) << c.text;
    }
}

TEST(BriefingParser, CutsSectionsAndCards) {
    struct Case {
        const char* markdown;
        std::vector<std::string> sections;
    };
    const Case cases[] = {
        {"before\n\n  after  \n---\nthird\n### A\n- one", {"0 Overview | before\n\n  after  \nthird", "1 A |  | one"}},
        {"### Empty\n \n### Rule\n---\n### B\n- x", {"0 B |  | x"}},
        {"#### Detail\ntext\n##### not\n# nor this", {"0 Detail | text\n##### not\n# nor this"}},
        {"### ✅ ACTION items\n- plain\n### 💼 W.R.K.\n- a\n## 🏠 Prsnl\n- b\n### Work\n- c", {"0 Work |  | c"}},
        {"### A\n- card\n- [ ] task\n\nparagraph\n    - sub", {"0 A |  | card - [ ] task paragraph | sub"}},
        {"### A\n- [maybe] later\n* star\n+ plus\n1. one", {"0 A | - [maybe] later\n* star\n+ plus\n1. one"}},
        {"### A\n-   spaces stay\n• typed bullet\n-\n- \u0301mark",
         {"0 A |  |   spaces stay | typed bullet - - \u0301mark"}},
        {"### A\n- **Done**\n- next", {"0 - Done |  | next"}},
        {"### ACTION ITEM\u017F\n- a\n### Action Item\n- b", {"0 Action Item |  | b"}},
        {"### Sn\u00E9\n- a\n### wrk\u0301\n- b\n### \u0600WRK\n- c",
         {"0 Sn\u00E9 |  | a", "1 wrk\u0301 |  | b", "2 \u0600WRK |  | c"}},
        {"###A\n###\u00A0B\n### \u0301C", {"0 Overview | ###A\n###\u00A0B\n### \u0301C"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(outline(c.markdown), c.sections) << c.markdown;
}

TEST(BriefingParser, TakesABoldPhraseAsHeading) {
    const std::string longest(76, 'x');
    const std::pair<std::string, const char*> cases[] = {
        {"**Hi**", "Hi"},
        {"**a**", "a"},
        {"****", nullptr},
        {"**Today:**", "Today:"},
        {"**Today**:", "Today"},
        {"**Today** :", nullptr},
        {"📌 **Follow-ups**", "📌 Follow-ups"},
        {"👩‍👩‍👧🇳🇱⚠️📌**Four**", "👩‍👩‍👧🇳🇱⚠️📌 Four"},
        {"!!!!! **Five**", nullptr},
        {"1. **Numbered**", nullptr},
        {"½ **Half**", nullptr},
        {"Note **this**", nullptr},
        {"**A** and **B**", nullptr},
        {"** **", nullptr},
        {"**" + longest + "**", longest.c_str()},
        {"**" + longest + "**:", longest.c_str()},
        {"**" + longest + "x**", nullptr},
    };
    for (const auto& [line, title] : cases) {
        EXPECT_EQ(briefing::boldHeaderTitle(line), title == nullptr ? std::nullopt : std::optional<std::string>(title))
            << line;
    }
}

TEST(BriefingParser, ReadsActionItems) {
    using Item = BriefingActionItem;
    const std::pair<const char*, std::optional<Item>> cases[] = {
        {"- [ ] a", Item{"a", {}, false}},
        {"[] a", Item{"a", {}, false}},
        {"  -   [ X ] a ", Item{"a", {}, true}},
        {"- [x] 💼 prsnl  Call", Item{"Call", "PRSNL", true}},
        {"- [ ] 🏠wrk x", Item{"x", "WRK", false}},
        {"- [ ] Pr\u017Fnl x", Item{"x", "PRSNL", false}},
        {"- [ ] WRK", Item{"WRK", {}, false}},
        {"- [ ] WRKx", Item{"WRKx", {}, false}},
        {"- [ ] 💼🏠 both", Item{"🏠 both", "WRK", false}},
        {"- [ ] 💼", std::nullopt},
        {"- [ ]  ", std::nullopt},
        {"- [maybe] a", std::nullopt},
        {"- [link](https://x)", std::nullopt},
        {"- [ a", std::nullopt},
        {"* [ ] a", std::nullopt},
        {"1. [ ] a", std::nullopt},
        {"- - [ ] a", std::nullopt},
    };
    for (const auto& [line, item] : cases)
        EXPECT_EQ(briefing::actionItem(line), item) << line;
    EXPECT_THAT(briefing::actionItems("### A\n[x] a\n### B\n- [ ] b\n- [ ] b"),
                ElementsAre(Item{"a", {}, true}, Item{"b", {}, false}, Item{"b", {}, false}));
}

// The parser looks no further at a title that does not hold these letters as they are.
TEST(BriefingParser, NoOtherLetterFoldsToAPartOfActionItem) {
    constexpr std::string_view words = "action item";
    for (char32_t codePoint = 0x80; codePoint <= 0x10FFFF; ++codePoint) {
        if (codePoint >= 0xD800 && codePoint <= 0xDFFF) continue;
        std::string folded;
        icu::UnicodeString(static_cast<UChar32>(codePoint)).foldCase().toUTF8String(folded);
        // Folded text that begins in front of the words, ends behind them or lies within shares an end with them.
        for (std::size_t size = 1; size <= folded.size(); ++size) {
            const std::string_view start = std::string_view(folded).substr(0, size);
            const std::string_view end = std::string_view(folded).substr(folded.size() - size);
            ASSERT_FALSE(words.ends_with(start) || words.starts_with(end)) << folded;
        }
        ASSERT_EQ(words.find(folded), std::string_view::npos) << folded;
    }
}

TEST(BriefingItem, KeysFollowTheWordingOnly) {
    const std::string marks = "a" + [] {
        std::string text;
        for (int i = 0; i < 600; ++i)
            text += "\u0301";
        return text;
    }();
    const std::pair<std::string, std::string> cases[] = {
        {"**Reply to Legal** — contract (due Fri)", "reply-to-legal-contract-due-fri"},
        {"Café — 2 p.m.!", "café-2-p-m"},
        {"", ""},
        {"—🔥 **", ""},
        {"ΟΔΟΣ İ ǅ", "οδος-i\u0307-ǆ"},
        {"⚠ Pay½ ٣", "pay½-٣"},
        {std::string(99, 'a') + "-b", std::string(99, 'a') + "-"},
        {std::string(99, 'a') + "-", std::string(99, 'a')},
        {std::string(100, 'a') + "\u0301b", std::string(100, 'a') + "\u0301"},
        {std::string(100000, 'A'), std::string(100, 'a')},
        {marks, marks},
        {std::string(98, 'a') + "\u00E9\u00F8b", std::string(98, 'a') + "\u00E9\u00F8"},
        {std::string(99, 'a') + "\u00E9\u0308b", std::string(99, 'a') + "\u00E9\u0308"},
    };
    for (const auto& [text, key] : cases) {
        EXPECT_EQ(BriefingItem::key(text), key);
        EXPECT_EQ(BriefingItem(text).id(), key);
        EXPECT_EQ(BriefingItem(text).markdown(), text);
        EXPECT_EQ(itemKeyByUnicode(text), key);
    }
}

TEST(BriefingItem, SuggestsATodo) {
    const std::string tail(120, 'y');
    const std::pair<std::string, std::string> cases[] = {
        {"**Sign the NDA** — Legal is waiting", "Sign the NDA"},
        {"**Bob** needs `build 42` today", "Bob needs build 42 today"},
        {"***Sign the NDA**", "Sign the NDA"},
        {"**open *one* **Sign the NDA**", "Sign the NDA"},
        {"**  seven7  ** — x", "seven7"},
        {"Reply — to — all", "Reply"},
        {"no—dash", "no—dash"},
        {tail, std::string(100, 'y')},
        {"", ""},
    };
    for (const auto& [markdown, text] : cases)
        EXPECT_EQ(BriefingItem(markdown).suggestedTodoText(), text) << markdown;
}

TEST(BriefingItem, SurvivesItsBriefingAndComparesByValue) {
    std::optional<BriefingItem> kept;
    {
        const auto sections = briefing::sections("### A\n- first\n- Same words\n### B\n- same, words");
        kept = sections[0].items[1];
        EXPECT_EQ(sections[0].items[1].id(), sections[1].items[0].id());
        EXPECT_NE(sections[0].items[1], sections[1].items[0]);
    }
    EXPECT_EQ(*kept, BriefingItem("Same words"));
    EXPECT_EQ(std::hash<BriefingItem>{}(*kept), std::hash<BriefingItem>{}(BriefingItem("Same words")));
}

TEST(BriefingParser, AgreesWithThePlainGrammarOnRandomText) {
    constexpr int rounds = 4000;
    std::mt19937 random(20261122);
    for (int i = 0; i < rounds; ++i) {
        const std::string text = testing::randomBriefing(random);
        ASSERT_TRUE(text::isValidUtf8(text));
        ASSERT_EQ(testing::parseAsTheProgram(text), testing::parsePlainly(text)) << "round " << i << ":\n" << text;
        ASSERT_EQ(BriefingItem::key(text), itemKeyByUnicode(text)) << "round " << i << ":\n" << text;
    }
}

TEST(Briefing, LabelsItsDayInEnglish) {
    const LocalCalendar calendar("Europe/Amsterdam", "nl_NL");
    const Briefing briefing{"2026-11-16.md", *calendar.startOfDay(CivilDay{2026, 11, 16}), "", ""};
    EXPECT_EQ(briefing.dateLabel(calendar), "Monday 16 Nov");
}

}  // namespace
}  // namespace sunpane
