#include "core/stores/FlagFile.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/Dates.h"
#include "core/stores/Json.h"

namespace sunpane {
namespace {

// The agent reads this in every file, so that it needs no other instructions.
constexpr const char* note =
    "Written by Dawnly. 'cleared' items were explicitly dismissed by the user — do not resurface them unless something "
    "genuinely changed; a cleared topic ALWAYS overrides any similar prio entry. 'prio' items were flagged "
    "high-priority and carry a 'since' date — they expire after ~2 days, so treat them as today's priorities, never as "
    "a backlog; if the user wants something to stay a priority they re-flag it. 'untouched' items were shown in the "
    "current brief but the user has not acted on them; if something stays untouched for days, condense it or resurface "
    "it once more prominently, then let it go. 'reminders' are todos the user scheduled a nudge for — treat them as "
    "commitments with a time: reference them when planning the day, and do not nag about them before their moment.";

class FlagFileReader : public json::Reader {
public:
    std::optional<FlagState> result(std::string_view file) {
        if (!read(file) || !hasPrio_ || !hasCleared_ || place_ != Place::end) return std::nullopt;
        return std::move(state_);
    }

private:
    enum class Place { start, file, member, texts, instants, hidden, end };

    bool onStartObject() override {
        if (place_ == Place::start) {
            place_ = Place::file;
            return true;
        }
        if (place_ != Place::member || (texts_ == nullptr && instants_ == nullptr)) return false;
        if (texts_ != nullptr) {
            (texts_ == &state_.prio ? hasPrio_ : hasCleared_) = true;
            texts_->clear();
        } else {
            instants_->clear();
        }
        place_ = texts_ != nullptr ? Place::texts : Place::instants;
        return true;
    }

    bool onEndObject() override {
        place_ = place_ == Place::file ? Place::end : Place::file;
        return true;
    }

    bool onStartArray() override {
        if (place_ != Place::member || texts_ != nullptr || instants_ != nullptr) return false;
        state_.hidden.clear();
        place_ = Place::hidden;
        return true;
    }

    bool onEndArray() override {
        place_ = Place::file;
        return true;
    }

    bool onKey(std::string& name) override {
        if (place_ != Place::file) {
            key_ = std::move(name);
            return true;
        }
        texts_ = name == "prio" ? &state_.prio : name == "cleared" ? &state_.cleared : nullptr;
        instants_ = name == "dates" ? &state_.dates : name == "firstFlagged" ? &state_.firstFlagged : nullptr;
        if (texts_ == nullptr && instants_ == nullptr && name != "hidden") return skipValue();
        place_ = Place::member;
        return true;
    }

    bool onString(std::string& value) override {
        if (place_ == Place::texts) {
            texts_->insert_or_assign(std::move(key_), std::move(value));
        } else if (place_ == Place::hidden) {
            state_.hidden.insert(std::move(value));
        } else {
            return false;
        }
        return true;
    }

    bool onNumber(double value) override {
        if (place_ != Place::instants) return false;
        instants_->insert_or_assign(std::move(key_), Instant{value});
        return true;
    }

    // An explicit null says the same as a missing member, where one may be missing.
    bool onNull() override {
        if (place_ != Place::member || texts_ != nullptr) return false;
        if (instants_ != nullptr) {
            instants_->clear();
        } else {
            state_.hidden.clear();
        }
        place_ = Place::file;
        return true;
    }

    Place place_ = Place::start;
    std::map<std::string, std::string>* texts_ = nullptr;
    std::map<std::string, Instant>* instants_ = nullptr;
    std::string key_;
    bool hasPrio_ = false;
    bool hasCleared_ = false;
    FlagState state_;
};

template <class Value>
std::optional<Value> valueAt(const std::map<std::string, Value>& map, const std::string& key) {
    const auto found = map.find(key);
    return found == map.end() ? std::nullopt : std::optional(found->second);
}

template <class Value>
void setAt(std::map<std::string, Value>& map, const std::string& key, const std::optional<Value>& value) {
    if (value) {
        map.insert_or_assign(key, *value);
    } else {
        map.erase(key);
    }
}

/// All that is known of one card.
struct Card {
    std::optional<std::string> prio;
    std::optional<std::string> cleared;
    bool hidden = false;
    std::optional<Instant> date;
    std::optional<Instant> firstFlagged;

    Card(const FlagState& state, const std::string& key)
        : prio(valueAt(state.prio, key)),
          cleared(valueAt(state.cleared, key)),
          hidden(state.hidden.contains(key)),
          date(valueAt(state.dates, key)),
          firstFlagged(valueAt(state.firstFlagged, key)) {}

    bool hasFlag() const { return prio || cleared || hidden; }

    void putInto(FlagState& state, const std::string& key) const {
        setAt(state.prio, key, prio);
        setAt(state.cleared, key, cleared);
        if (hidden) {
            state.hidden.insert(key);
        } else {
            state.hidden.erase(key);
        }
        setAt(state.dates, key, date);
        setAt(state.firstFlagged, key, firstFlagged);
    }

    friend bool operator==(const Card&, const Card&) = default;
};

Card merged(const Card& base, const Card& ours, const Card& theirs) {
    if (ours == base) return theirs;
    if (theirs == base) return ours;
    if (ours.hasFlag() != theirs.hasFlag()) return ours.hasFlag() ? ours : theirs;
    return theirs.date > ours.date ? theirs : ours;
}

void collectKeys(const FlagState& state, std::set<std::string>& keys) {
    for (const auto& [key, text] : state.prio)
        keys.insert(key);
    for (const auto& [key, text] : state.cleared)
        keys.insert(key);
    for (const auto& [key, date] : state.dates)
        keys.insert(key);
    for (const auto& [key, date] : state.firstFlagged)
        keys.insert(key);
    keys.insert(state.hidden.begin(), state.hidden.end());
}

}  // namespace

std::string encodeFlags(const FlagState& state) {
    std::string out = R"({"prio":)";
    json::appendString(out, state.prio);
    out += R"(,"cleared":)";
    json::appendString(out, state.cleared);
    out += R"(,"hidden":[)";
    bool first = true;
    for (const std::string& key : state.hidden) {
        if (!first) out += ',';
        first = false;
        json::appendString(out, key);
    }
    out += R"(],"dates":)";
    json::appendNumber(out, state.dates);
    out += R"(,"firstFlagged":)";
    json::appendNumber(out, state.firstFlagged);
    out += '}';
    return out;
}

std::optional<FlagState> decodeFlags(std::string_view file) {
    return FlagFileReader().result(file);
}

FlagState mergeFlags(const FlagState& base, const FlagState& ours, const FlagState& theirs) {
    std::set<std::string> keys;
    collectKeys(ours, keys);
    collectKeys(theirs, keys);
    FlagState state;
    for (const std::string& key : keys)
        merged({base, key}, {ours, key}, {theirs, key}).putInto(state, key);
    return state;
}

FlagChange flagChange(const FlagState& before, const FlagState& after) {
    FlagChange change;
    collectKeys(before, change.keys);
    collectKeys(after, change.keys);
    std::erase_if(change.keys, [&](const std::string& key) { return Card(before, key) == Card(after, key); });
    for (const std::string& key : change.keys)
        Card(before, key).putInto(change.before, key);
    return change;
}

void takeBack(FlagState& state, const FlagChange& change) {
    for (const std::string& key : change.keys)
        Card(change.before, key).putInto(state, key);
}

StoreFormat flagFormat() {
    return {[](std::string_view content) { return decodeFlags(content).has_value(); },
            [](const std::string* base, std::string_view ours, std::string_view theirs) {
                const auto before = base != nullptr ? decodeFlags(*base) : std::nullopt;
                const auto mine = decodeFlags(ours);
                const auto others = decodeFlags(theirs);
                assert(mine && others);
                return encodeFlags(mergeFlags(before.value_or(FlagState{}), *mine, *others));
            }};
}

std::string encodeFeedback(const Feedback& feedback, const Clock& clock) {
    struct Entry {
        std::string since;
        const std::string* text;
    };
    const LocalCalendar calendar(clock);
    // Days repeat, and formatting one takes longer than all the rest. Keyed by year, month and day.
    std::map<std::array<int, 3>, std::string> days;
    const auto sinceOf = [&](Instant instant) {
        const CivilDay day = calendar.day(instant);
        std::string& since = days[{day.year, day.month, day.day}];
        if (since.empty()) since = calendar.format(instant, "yyyy-MM-dd");
        return since;
    };
    std::vector<Entry> priorities;
    for (const auto& priority : feedback.prio) {
        priorities.push_back({sinceOf(priority.since), &priority.text});
    }
    std::stable_sort(priorities.begin(), priorities.end(),
                     [](const Entry& a, const Entry& b) { return a.since > b.since; });

    nlohmann::json list = nlohmann::json::array();
    for (const Entry& entry : priorities)
        list.push_back({{"since", entry.since}, {"text", *entry.text}});
    std::vector<std::string> cleared = feedback.cleared;
    std::sort(cleared.begin(), cleared.end());
    const nlohmann::json file{{"cleared", cleared},
                              {"note", note},
                              {"prio", list},
                              {"reminders", feedback.reminders},
                              {"untouched", feedback.untouched},
                              {"updated", iso8601Utc(clock.now())}};
    constexpr int indentation = 2;
    return file.dump(indentation, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::optional<Feedback> decodeFeedbackLists(std::string_view file) {
    const auto members = nlohmann::json::parse(file, nullptr, false);
    if (!members.is_object()) return std::nullopt;
    const auto list = [&](const char* key) {
        std::vector<std::string> texts;
        const auto member = members.find(key);
        if (member == members.end() || !member->is_array()) return texts;
        for (const auto& text : *member) {
            if (text.is_string()) texts.push_back(text.get<std::string>());
        }
        return texts;
    };
    Feedback feedback;
    feedback.untouched = list("untouched");
    feedback.reminders = list("reminders");
    return feedback;
}

}  // namespace sunpane
