#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/Clock.h"
#include "base/Instant.h"
#include "core/stores/StoreFile.h"

namespace sunpane {

/// What `itemflags.json` holds, all by item key. A plain value; the functions are pure and may run on any thread.
struct FlagState {
    /// Priority cards and their texts.
    std::map<std::string, std::string> prio;
    /// Cleared cards and their texts.
    std::map<std::string, std::string> cleared;
    std::set<std::string> hidden;
    /// When the key was last flagged, cleared, hidden or referenced.
    std::map<std::string, Instant> dates;
    /// When the key became a priority, without having ceased to be one since.
    std::map<std::string, Instant> firstFlagged;

    friend bool operator==(const FlagState&, const FlagState&) = default;
};

std::string encodeFlags(const FlagState& state);

/// Absent when anything in the file is not as it must be.
std::optional<FlagState> decodeFlags(std::string_view file);

/// The state that carries both sides' changes to `base`, card by card. Where both changed a card, one that still has
/// a flag goes before one that has none, and then the later change counts.
FlagState mergeFlags(const FlagState& base, const FlagState& ours, const FlagState& theirs);

StoreFormat flagFormat();

/// What became of some cards, to take it back: their keys, and what was known of those cards before.
struct FlagChange {
    std::set<std::string> keys;
    FlagState before;
};

/// The cards of which the two states differ.
FlagChange flagChange(const FlagState& before, const FlagState& after);

/// The state with those cards as they were before the change.
void takeBack(FlagState& state, const FlagChange& change);

/// The file that tells the agent what became of its cards.
struct Feedback {
    struct Priority {
        std::string text;
        Instant since;
    };
    std::vector<Priority> prio;
    std::vector<std::string> cleared;
    std::vector<std::string> untouched;
    std::vector<std::string> reminders;
};

/// The text of `feedback.json`: indented, keys sorted, days in the user's locale and time zone.
std::string encodeFeedback(const Feedback& feedback, const Clock& clock);

/// The untouched cards and the reminders of such a text, and nothing else of it. What is no text in a list is left out.
/// Absent when it is no JSON object.
std::optional<Feedback> decodeFeedbackLists(std::string_view file);

}  // namespace sunpane
