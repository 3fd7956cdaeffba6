#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <nlohmann/json.hpp>
#include <string_view>

#include "core/stores/FlagFile.h"
#include "core/stores/Topics.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

class StillClock : public sunpane::Clock {
public:
    sunpane::Instant now() const override { return {816480000}; }
    std::string timeZone() const override { return "Europe/Amsterdam"; }
    std::string locale() const override { return "en_US"; }
};

void checkFeedback(const sunpane::FlagState& state) {
    using namespace sunpane;
    Feedback feedback;
    for (const auto& [key, text] : state.prio) {
        const auto date = state.dates.find(key);
        feedback.prio.push_back({text, date == state.dates.end() ? Instant{} : date->second});
    }
    for (const auto& [key, text] : state.cleared)
        feedback.cleared.push_back(text);
    const auto file = nlohmann::json::parse(encodeFeedback(feedback, StillClock()));
    require(file.size() == 6 && file["prio"].size() == state.prio.size());
    require(file["cleared"].size() == state.cleared.size());
}

void checkTopics(const sunpane::FlagState& state) {
    using namespace sunpane;
    TopicIndex index;
    std::size_t entries = 0;
    for (const auto& [key, text] : state.cleared) {
        index.add(text);
        ++entries;
    }
    for (const auto& [key, text] : state.prio) {
        bool expected = false;
        for (const auto& [other, dismissal] : state.cleared) {
            expected = expected || sameTopic(significantWords(text), significantWords(dismissal));
        }
        require(index.matches(text, entries) == expected);
    }
}

}  // namespace

// Whatever decodes is JSON, survives a writing and a reading unchanged, merges with itself into itself, and makes a
// feedback file; its topics are found as by comparing all of them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sunpane;
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    const auto state = decodeFlags(file);
    if (!state) return 0;
    require(nlohmann::json::accept(file));
    const std::string written = encodeFlags(*state);
    require(nlohmann::json::accept(written));
    const auto again = decodeFlags(written);
    require(again && *again == *state);
    require(encodeFlags(*again) == written);
    require(mergeFlags(*state, *state, *state) == *state);
    require(mergeFlags({}, *state, {}) == *state);
    require(mergeFlags({}, {}, *state) == *state);
    // Words and dates are found by the rules of Unicode, which takes longer than all the rest.
    constexpr std::size_t oneIn = 16;
    if (std::hash<std::string_view>()(file) % oneIn != 0) return 0;
    checkFeedback(*state);
    checkTopics(*state);
    return 0;
}
