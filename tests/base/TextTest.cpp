#include "base/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sunpane::text {
namespace {

using ::testing::ElementsAre;

TEST(Text, TrimsByUnicodeClasses) {
    EXPECT_EQ(trimWhitespace("\t\u00A0\u3000 a b \u2003\t"), "a b");
    EXPECT_EQ(trimWhitespace("\n a \n"), "\n a \n");
    EXPECT_EQ(trimWhitespace("\u200B a"), "\u200B a");  // a format character, not a space
    EXPECT_EQ(trimWhitespaceAndNewlines(" \r\n\v\f\u0085 a\u2028 \n"), "a\u2028");
    EXPECT_EQ(trimWhitespace(" \t "), "");
}

TEST(Text, SplitsLinesAtEveryNewline) {
    EXPECT_THAT(lines("a\r\nb\u0085c\u2028d\u2029\ve\f"), ElementsAre("a", "", "b", "c", "d", "", "e", ""));
    EXPECT_THAT(lines(""), ElementsAre(""));
}

TEST(Text, FindsANewlineWhereverItStandsInABlock) {
    constexpr std::size_t longest = 200;
    for (const std::string newline : {"\n", "\v", "\f", "\r", "\u0085", "\u2028", "\u2029"}) {
        for (std::size_t offset = 0; offset < longest; ++offset) {
            // The filling is full of bytes that begin newlines among other code points.
            std::string before;
            while (before.size() < offset)
                before += before.size() + 3 <= offset ? "\u2014" : "x";
            const std::string text = before + newline + "\u00A0y";
            EXPECT_THAT(lines(text), ElementsAre(before, "\u00A0y"));
            EXPECT_EQ(withPlainNewlines(text), before + "\n\u00A0y");
            EXPECT_TRUE(isValidUtf8(text));
            std::string broken = before + "\xE2\x80";
            broken += newline;
            EXPECT_FALSE(isValidUtf8(broken));
        }
    }
}

TEST(Text, CountsWhatAPersonSees) {
    struct Case {
        const char* text;
        std::size_t count;
        const char* firstTwo;
    };
    const Case cases[] = {
        {"", 0, ""},
        {"abc", 3, "ab"},
        {"a\r\nb", 3, "a\r\n"},
        {"e\u0301te\u0301", 3, "e\u0301t"},
        {"👩‍👩‍👧🇳🇱x", 3, "👩‍👩‍👧🇳🇱"},
        {"ab\u0308c", 3, "ab\u0308"},
        {"한국어", 3, "한국"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(characterCount(c.text), c.count) << c.text;
        EXPECT_EQ(firstCharacters(c.text, 2), c.firstTwo) << c.text;
        EXPECT_EQ(std::string(firstCharacters(c.text, 2)) + std::string(dropFirstCharacters(c.text, 2)), c.text);
    }
    EXPECT_EQ(dropLastCharacters("ab🇳🇱", 1), "ab");
    EXPECT_EQ(dropLastCharacters("a", 2), "");
}

TEST(Text, PrefixesEndAtCharacterBoundaries) {
    EXPECT_TRUE(hasPrefix("- a", "- "));
    EXPECT_TRUE(hasPrefix("- é", "- "));
    EXPECT_FALSE(hasPrefix("- \u0301a", "- "));
    EXPECT_TRUE(hasSuffix("Hé**", "**"));
    EXPECT_TRUE(hasSuffix("😀:", ":"));
    EXPECT_FALSE(hasSuffix("x*\u0301", "*"));
}

TEST(Text, CaseAndClassesFollowUnicode) {
    EXPECT_EQ(lowercased("ÀÉΣ İ"), "àéς i\u0307");
    EXPECT_EQ(uppercased("straße"), "STRASSE");
    EXPECT_TRUE(containsIgnoringCase("✅ ACTION Items", "action items"));
    EXPECT_TRUE(containsIgnoringCase("STRASSE", "straße"));
    EXPECT_THAT(alphanumericRuns("Café — 2 p.m.! ٣½ नि"), ElementsAre("Café", "2", "p", "m", "٣½", "नि"));
    EXPECT_EQ(replacingAll("***a****b*", "**", ""), "*ab*");
}

TEST(Text, TellsValidUtf8FromNot) {
    for (const char* valid : {"", "abc", "é€😀", "\U0010FFFF"}) {
        EXPECT_TRUE(isValidUtf8(valid)) << valid;
        EXPECT_EQ(toValidUtf8(valid), valid);
    }
    const std::string_view invalid[] = {"\x80",     "a\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                                        "\xE2\x82", "\xFF"};
    for (const auto bytes : invalid) {
        EXPECT_FALSE(isValidUtf8(bytes));
        EXPECT_TRUE(isValidUtf8(toValidUtf8(bytes)));
    }
}

}  // namespace
}  // namespace sunpane::text
