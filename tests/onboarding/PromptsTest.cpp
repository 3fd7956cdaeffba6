#include "onboarding/Prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "core/briefing/BriefingCheck.h"
#include "core/briefing/BriefingParser.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* folder = "/home/ada/Briefings";

std::string exampleIn(const std::string& prompt) {
    const std::string begin = "--- begin example ---\n";
    const auto start = prompt.find(begin);
    const auto end = prompt.find("--- end example ---");
    if (start == std::string::npos || end == std::string::npos) return {};
    return prompt.substr(start + begin.size(), end - start - begin.size());
}

std::vector<std::string> problems(const std::string& file) {
    std::vector<std::string> result;
    for (const auto& finding : briefing::check("2026-07-06.md", file, LocalCalendar("Europe/Amsterdam", "en_US"))) {
        result.push_back(std::to_string(finding.line) + " " + finding.message);
    }
    return result;
}

TEST(Prompts, TheDeliveryBlockIsTheAgreedOneByteForByte) {
    std::ifstream file(DELIVERY_BLOCK, std::ios::binary);
    const std::string agreed{std::istreambuf_iterator<char>(file), {}};
    ASSERT_FALSE(agreed.empty());
    EXPECT_EQ(prompts::deliveryBlock(folder), agreed);
}

TEST(Prompts, ThePathStandsOnALineOfItsOwnAndReadsAsAFolder) {
    for (const auto& make : {prompts::deliveryBlock, prompts::morningTask, prompts::eveningTask}) {
        EXPECT_THAT(make(folder), HasSubstr("\n\n/home/ada/Briefings/\n\n"));
        EXPECT_EQ(make("/home/ada/Briefings/"), make(folder));
        EXPECT_THAT(make("/"), HasSubstr("\n\n/\n\n"));
    }
}

// An assistant copies what it is shown, so the examples have to be files that the panel shows as they are meant.
TEST(Prompts, WhatTheyShowIsAGoodBriefingAndARecapThatImportsNothingTwice) {
    const std::string morning = exampleIn(prompts::morningTask(folder));
    const std::string recap = exampleIn(prompts::eveningTask(folder));
    ASSERT_FALSE(morning.empty());
    ASSERT_FALSE(recap.empty());
    EXPECT_THAT(problems(morning), IsEmpty());
    EXPECT_THAT(problems(morning + "\n" + recap), IsEmpty());

    const auto document = briefing::splitDocument(morning + "\n" + recap);
    EXPECT_EQ(document.title, "Morning Briefing, Monday 6 July");
    std::vector<std::string> titles;
    for (const auto& section : briefing::sections(document.markdown))
        titles.push_back(section.title);
    EXPECT_THAT(titles, ElementsAre("📅 Today's Schedule", "🔴 Urgent", "💬 Mentions", "👀 On Your Radar", "🌙 EOD Recap"));
    std::vector<std::string> tasks;
    for (const auto& item : briefing::actionItems(document.markdown))
        tasks.push_back(item.text);
    EXPECT_THAT(tasks, ElementsAre("Sign the contract renewal", "Send Mira the rollout plan"));
    // The recap names the open task in the task's own words.
    EXPECT_THAT(recap, HasSubstr(tasks.back() + "\n"));
}

}  // namespace
}  // namespace sunpane
