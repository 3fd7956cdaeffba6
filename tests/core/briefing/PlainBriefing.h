#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/briefing/BriefingParser.h"

/// The grammar of a briefing once more, written as plainly as possible: every text is a list of characters cut by
/// ICU, and every step makes new strings. The fast parser is compared with it on random and on fuzzed text.
namespace sunpane::testing {

struct PlainItem {
    std::string id;
    std::string markdown;
    std::string suggestedTodoText;
    friend bool operator==(const PlainItem&, const PlainItem&) = default;
};

struct PlainSection {
    int id = 0;
    std::string title;
    std::string intro;
    std::vector<PlainItem> items;
    friend bool operator==(const PlainSection&, const PlainSection&) = default;
};

struct PlainBriefing {
    briefing::Document document;
    std::vector<PlainSection> sections;
    std::vector<BriefingActionItem> actionItems;
    friend bool operator==(const PlainBriefing&, const PlainBriefing&) = default;
};

/// `text` is valid UTF-8.
PlainBriefing parsePlainly(std::string_view text);

/// What the program's own parser makes of `text`, in the same form.
PlainBriefing parseAsTheProgram(std::string_view text);

/// Lines and fragments that briefings and mistakes are made of, put together by `next`, a source of random numbers.
template <class Random>
std::string randomBriefing(Random& next) {
    static const std::vector<std::string> fragments = {
        "- ",
        "- [ ] ",
        "- [x] ",
        "[X]",
        "[",
        "]",
        "# ",
        "## ",
        "### ",
        "#### ",
        "##### ",
        "#",
        "---",
        "**",
        "*",
        ":",
        "\u2022 ",
        "-",
        " ",
        "  ",
        "\t",
        "\u00A0",
        "\u3000",
        "\n",
        "\n",
        "\n",
        "\r\n",
        "\r",
        "\v",
        "\f",
        "\u0085",
        "\u2028",
        "\u2029",
        "Action Items",
        "ACTION ITEM\u017F",
        "WRK ",
        "prsnl ",
        "Pr\u017Fnl ",
        "W.R.K.",
        "\U0001F4BC",
        "\U0001F4BC ",
        "\U0001F3E0",
        "\uFE0F",
        "\u200D",
        "\u0301",
        "\u0308",
        "\u093F",
        "\u0600",
        "\U0001F3FD",
        "a",
        "Hi",
        "Bob needs this",
        "\u2014",
        " \u2014 ",
        "`",
        "caf\u00E9",
        "\u00C9T\u00C9",
        "\u03A3",
        "\u039F\u03A3 ",
        "\u0130",
        "\u01C5",
        "\u24B6",
        "\u00BD",
        "\u0663",
        "\u2460",
        "\uAC00",
        "\u1100",
        "\u1161",
        "\u0915\u094D\u0937",
        "\U0001F1F3",
        "\U0001F1F1",
        "\U0001F469\u200D\U0001F469",
        "e\u0301",
        "x y, z",
        "the contract is due on Friday",
        "0123456789",
        "a b c d e f g h i j k l m n o p q r s t u v w x y z 0 1 2 3 4 5 6 7 8 9",
        "\u00DF",
        "\uFB01",
        std::string("\0x", 2),
    };
    std::string text;
    const std::size_t count = next() % 48;
    for (std::size_t i = 0; i < count; ++i)
        text += fragments[next() % fragments.size()];
    return text;
}

}  // namespace sunpane::testing
