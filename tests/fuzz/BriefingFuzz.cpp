// Any bytes as a briefing file: read, cut into sections and cards, checked and written as JSON.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "base/Text.h"
#include "core/briefing/BriefingCheck.h"
#include "core/briefing/BriefingFile.h"
#include "core/briefing/BriefingJson.h"
#include "core/briefing/ItemKey.h"
#include "core/briefing/PlainBriefing.h"

namespace {

using namespace sunpane;

void require(bool holds, const char* what) {
    if (holds) return;
    std::cerr << "broken: " << what << '\n';
    std::abort();
}

void checkRecords(const Briefing& briefing) {
    int expectedId = 0;
    for (const auto& section : briefing.sections()) {
        require(section.id == expectedId++, "section ids count from 0");
        require(!section.intro.empty() || !section.items.empty(), "no section is empty");
        require(!briefing::isActionItemsTitle(section.title), "action items are no section");
        require(text::isValidUtf8(section.title) && text::isValidUtf8(section.intro), "sections are UTF-8");
        for (const auto& item : section.items) {
            require(item.id() == BriefingItem::key(item.markdown()), "an item's id is its key");
            require(item == BriefingItem(item.markdown()), "an item is made of its markdown alone");
            require(text::isValidUtf8(item.markdown()) && text::isValidUtf8(item.id()), "items are UTF-8");
            require(text::characterCount(item.id()) <= BriefingItem::maximumKeyCharacters, "keys are cut");
        }
    }
    for (const auto& item : briefing.actionItems()) {
        require(!item.text.empty() && text::trimWhitespace(item.text) == item.text, "tasks are trimmed and not empty");
    }
}

void checkJson(const Briefing& briefing) {
    // Formatting the date takes as long as all the rest and has nothing to do with the input.
    const std::string written = toJson(briefing, "2026-11-16T00:00:00+01:00", "Monday 16 Nov");
    require(written.find('\n') == std::string::npos, "JSON is one line");
    const auto read = nlohmann::json::parse(written);
    require(read["markdown"] == briefing.markdown && read["title"] == briefing.title, "JSON keeps the text");
    const auto sections = briefing.sections();
    require(read["sections"].size() == sections.size(), "JSON keeps the sections");
    for (std::size_t i = 0; i < sections.size(); ++i) {
        require(read["sections"][i]["items"].size() == sections[i].items.size(), "JSON keeps the items");
        for (std::size_t j = 0; j < sections[i].items.size(); ++j) {
            const auto& item = read["sections"][i]["items"][j];
            require(item["markdown"] == sections[i].items[j].markdown(), "JSON keeps an item's text");
            require(item["id"] == sections[i].items[j].id(), "JSON keeps an item's id");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const LocalCalendar calendar("Europe/Amsterdam", "en_US");
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const auto briefing = briefing::parseText("2026-11-16.md", {bytes, {}}, calendar);
    require(briefing.has_value() == text::isValidUtf8(bytes), "only UTF-8 is a briefing");
    for (const auto& finding : briefing::check("2026-11-16.md", bytes, calendar)) {
        require(finding.line >= 1, "lines count from 1");
    }
    // Text from here on: what is not UTF-8 still tries the grammar once it is repaired.
    const std::string text = text::toValidUtf8(bytes);
    require(text::isValidUtf8(text), "repaired text is UTF-8");
    require(BriefingItem::key(text) == itemKeyByUnicode(text), "both ways to a key agree");

    // The plain grammar is slow; a share of the inputs is enough to compare with it.
    constexpr std::size_t comparedShare = 512;
    const std::size_t lot = std::hash<std::string>{}(text);
    if (lot % comparedShare == 0) {
        require(testing::parseAsTheProgram(text) == testing::parsePlainly(text), "both grammars agree");
    }
    const auto document = briefing::splitDocument(text);
    const Briefing repaired{"2026-11-16.md", {}, document.title, document.markdown};
    checkRecords(repaired);
    checkJson(repaired);
    return 0;
}
