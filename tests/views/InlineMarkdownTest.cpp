#include "views/InlineMarkdown.h"

#include <gtest/gtest.h>

namespace sunpane {
namespace {

struct Case {
    const char* markdown;
    const char* styled;
    const char* plain;
};

void expectAll(std::initializer_list<Case> cases) {
    for (const auto& c : cases) {
        EXPECT_EQ(rendered(c.markdown), c.styled);
        EXPECT_EQ(plainText(c.markdown), c.plain);
    }
}

TEST(InlineMarkdown, StylesWhatHasAPartnerAndEscapesTheRest) {
    expectAll({
        {"10:00 **Standup** at", "10:00 <b>Standup</b> at", "10:00 Standup at"},
        {"2 * 3 * 4 and **open", "2 * 3 * 4 and **open", "2 * 3 * 4 and **open"},
        {"snake_case_name _yes_ __bold__", "snake_case_name <i>yes</i> <b>bold</b>", "snake_case_name yes bold"},
        {"<img src='x'> & \"y\"", "&lt;img src='x'&gt; &amp; \"y\"", "<img src='x'> & \"y\""},
        {"one\ntwo", "one<br>two", "one\ntwo"},
        {"****", "****", "****"},
        {"5\\* and \\[x\\](y) and C:\\dir", "5* and [x](y) and C:\\dir", "5* and [x](y) and C:\\dir"},
        {"**عاجل**: اتصل بـ *سارة*", "\u200F<b>عاجل</b>: اتصل بـ <i>سارة</i>", "عاجل: اتصل بـ سارة"},
        {"*10:30* عاجل", "\u200F<i>10:30</i> عاجل", "10:30 عاجل"},
        {"**👩‍👩‍👧‍👦**🇳🇱", "<b>👩‍👩‍👧‍👦</b>🇳🇱",
         "👩‍👩‍👧‍👦🇳🇱"},
    });
}

TEST(InlineMarkdown, MarksNestAndBrokenOnesStayText) {
    expectAll({
        {"**Bold *and* italic**", "<b>Bold <i>and</i> italic</b>", "Bold and italic"},
        {"*a **b** c*", "<i>a <b>b</b> c</i>", "a b c"},
        {"***both***", "<i><b>both</b></i>", "both"},
        {"**a *b** c*", "<i><i>a <i>b</i></i> c</i>", "a b c"},
        {"*a **b*", "*a *<i>b</i>", "*a *b"},
        {"**a*b**", "<b>a*b</b>", "a*b"},
        {"** not bold **", "** not bold **", "** not bold **"},
        {"(**10:00**)", "(<b>10:00</b>)", "(10:00)"},
        {"_a *b_ c*", "<i>a *b</i> c*", "a *b c*"},
    });
    EXPECT_EQ(plainText("`a < b && **c**` ``x`y`` `open"), "a < b && **c** x`y `open");
    EXPECT_NE(rendered("`a < b && **c**`").find(">a &lt; b &amp;&amp; **c**</"), std::string::npos);
}

TEST(InlineMarkdown, OnlySafeAddressesBecomeLinks) {
    expectAll({
        {"[Join](https://x.y/z) now", "<a href=\"0\">Join</a> now", "Join now"},
        {"[a](HTTP://x) [b](mailto:b@x.y)", "<a href=\"0\">a</a> <a href=\"1\">b</a>", "a b"},
        {"[**a** [b]](https://x \"title\")", "<a href=\"0\"><b>a</b> [b]</a>", "a [b]"},
        {"**[a](https://x)**", "<b><a href=\"0\">a</a></b>", "a"},
        {"[f](file:///etc/passwd)[j](javascript:x)[d](data:,x)[e](https://)[r](rel)", "fjder", "fjder"},
        {"[q](https://x/\"onclick)", "q", "q"},
        {"[a](b", "[a](b", "[a](b"},
        {"[] [](https://x) [x] (https://x)", "[] [](https://x) [x] (https://x)", "[] [](https://x) [x] (https://x)"},
    });
    EXPECT_EQ(linksOf("[*a*](<https://x/1_(2)>) [b](x) [c](mailto:c@x)"),
              (std::vector<InlineLink>{{"a", "https://x/1_(2)"}, {"c", "mailto:c@x"}}));
    EXPECT_EQ(renderedTitle("**A** [b](https://x)"), "<b>A</b> b");
}

TEST(InlineMarkdown, HostileTextsStayWithinBounds) {
    for (const char* part : {"*", "_a", "[", "[a](", "`", "``a", "**a *", "[a](https://x)", "\\"}) {
        std::string text;
        while (text.size() < 100000)
            text += part;
        EXPECT_LT(plainText(text).size(), maximumRenderedBytes + 4);
        EXPECT_LE(linksOf(text).size(), maximumLinks);
    }
}

}  // namespace
}  // namespace sunpane
