#include "core/stores/ItemFlagStore.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/Text.h"

namespace sunpane {
namespace {

// The card's text as people read it: without the marks for bold and code.
std::string cleanText(std::string_view markdown) {
    const std::string plain = text::replacingAll(text::replacingAll(text::toValidUtf8(markdown), "**", ""), "`", "");
    return std::string(text::trimWhitespaceAndNewlines(plain));
}

Instant dateOf(const FlagState& state, const std::string& key) {
    const auto found = state.dates.find(key);
    return found == state.dates.end() ? Instant::distantPast() : found->second;
}

}  // namespace

std::vector<std::string> dismissedPriorities(const FlagState& state, TopicIndex& topics) {
    std::vector<std::string> dismissed;
    if (state.prio.empty() || state.cleared.empty()) return dismissed;
    using Dismissal = std::pair<Instant, const std::string*>;
    std::vector<Dismissal> latestFirst;
    for (const auto& [key, text] : state.cleared)
        latestFirst.emplace_back(dateOf(state, key), &text);
    std::sort(latestFirst.begin(), latestFirst.end(),
              [](const Dismissal& a, const Dismissal& b) { return a.first > b.first; });
    topics.clear();
    for (const auto& [date, text] : latestFirst)
        topics.add(*text);
    for (const auto& [key, text] : state.prio) {
        const Instant date = dateOf(state, key);
        const auto later = std::partition_point(latestFirst.begin(), latestFirst.end(),
                                                [&](const Dismissal& dismissal) { return dismissal.first > date; });
        if (topics.matches(text, static_cast<std::size_t>(later - latestFirst.begin()))) dismissed.push_back(key);
    }
    return dismissed;
}

ItemFlagStore::ItemFlagStore(StoreFiles& files, const std::string& directory, FeedbackAtStart feedback)
    : files_(files),
      clock_(files.ports().clock),
      file_(files, pathInside(directory, fileName), flagFormat()),
      feedbackFile_(files, pathInside(directory, feedbackName), std::nullopt) {
    files_.ports().files.createFolders(directory);
    const bool isKept = feedback == FeedbackAtStart::kept;
    feedbackFile_.load([&](const StoreFile::Incoming& incoming) {
        return isKept ? takeFeedback(incoming) : nlohmann::json::accept(incoming.content);
    });
    files_.ensureDownloaded(file_.path(), StoreFiles::downloadTimeout);
    file_.load([&](const StoreFile::Incoming& incoming) { return isKept ? take(incoming) : takeAndTell(incoming); });
    file_.onConflict([this](const StoreFile::Incoming& incoming) {
        if (takeAndTell(incoming)) save();
    });
    // A file that appears where there was none is newer than nothing.
    if (!file_.modificationTime()) lastKnownMtime_ = FileTime{};
    reloadTimer_ = files_.ports().runLoop.every(reloadInterval, [this] { reloadIfChangedExternally(); });
}

ItemFlagStore::~ItemFlagStore() = default;

void ItemFlagStore::togglePrio(const BriefingItem& item) {
    adoptForeignChanges();
    const std::string key(item.id());
    beginChange();
    if (state_.prio.erase(key) == 0) flag(key, cleanText(item.markdown()));
    save();
}

void ItemFlagStore::toggleCleared(const BriefingItem& item) {
    adoptForeignChanges();
    const std::string key(item.id());
    beginChange();
    if (state_.cleared.erase(key) == 0) {
        state_.cleared[key] = cleanText(item.markdown());
        state_.prio.erase(key);
        state_.dates[key] = clock_.now();
    }
    save();
}

void ItemFlagStore::hide(const BriefingItem& item) {
    adoptForeignChanges();
    const std::string key(item.id());
    beginChange();
    if (!state_.cleared.contains(key)) state_.cleared[key] = cleanText(item.markdown());
    state_.hidden.insert(key);
    state_.dates[key] = clock_.now();
    save();
}

void ItemFlagStore::unhide(const BriefingItem& item) {
    adoptForeignChanges();
    beginChange();
    state_.hidden.erase(std::string(item.id()));
    save();
}

void ItemFlagStore::unclear(const BriefingItem& item) {
    adoptForeignChanges();
    beginChange();
    state_.cleared.erase(std::string(item.id()));
    save();
}

void ItemFlagStore::setPrio(const std::string& key, std::string_view text, bool on) {
    adoptForeignChanges();
    const std::string validKey = text::toValidUtf8(key);
    beginChange();
    if (on) {
        flag(validKey, text::toValidUtf8(text));
    } else {
        state_.prio.erase(validKey);
    }
    save();
}

FlagChange ItemFlagStore::during(const std::function<void()>& operation) {
    // What others did to the file meanwhile is none of the operation's doing.
    adoptForeignChanges();
    const FlagState before = state_;
    operation();
    return flagChange(before, state_);
}

void ItemFlagStore::takeBack(const FlagChange& change) {
    adoptForeignChanges();
    beginChange();
    sunpane::takeBack(state_, change);
    save();
}

void ItemFlagStore::flag(const std::string& key, std::string text) {
    state_.cleared.erase(key);
    retireDismissals(text);
    state_.prio[key] = std::move(text);
    const Instant now = clock_.now();
    state_.dates[key] = now;
    state_.firstFlagged.try_emplace(key, now);
}

// Flagging a topic takes back earlier dismissals of it.
void ItemFlagStore::retireDismissals(const std::string& text) {
    for (auto entry = state_.cleared.begin(); entry != state_.cleared.end();) {
        if (topics_.areSameTopic(text, entry->second)) {
            state_.hidden.erase(entry->first);
            entry = state_.cleared.erase(entry);
        } else {
            ++entry;
        }
    }
}

void ItemFlagStore::refreshPrioReferences(const std::vector<std::string>& texts) {
    if (texts.empty()) return;
    adoptForeignChanges();
    if (state_.prio.empty()) return;
    topics_.clear();
    for (const std::string& text : texts)
        topics_.add(text::toValidUtf8(text));
    const Instant now = clock_.now();
    bool anyDateSet = false;
    for (const auto& [key, text] : state_.prio) {
        if (now - dateOf(state_, key) <= referenceInterval || !topics_.matches(text, texts.size())) continue;
        state_.dates[key] = now;
        anyDateSet = true;
    }
    if (!anyDateSet) return;
    topicsCompared_ = false;
    save();
}

void ItemFlagStore::updateUntouched(const std::vector<std::string>& texts) {
    std::vector<std::string> cleaned;
    cleaned.reserve(texts.size());
    for (const std::string& text : texts)
        cleaned.push_back(cleanText(text));
    if (cleaned == untouched_) return;
    untouched_ = std::move(cleaned);
    writeFeedback();
}

void ItemFlagStore::updateReminders(const std::vector<std::string>& lines) {
    std::vector<std::string> valid;
    valid.reserve(lines.size());
    for (const std::string& line : lines)
        valid.push_back(text::toValidUtf8(line));
    if (valid == reminders_) return;
    reminders_ = std::move(valid);
    writeFeedback();
}

void ItemFlagStore::beginChange() {
    announceChange();
    topicsCompared_ = false;
}

void ItemFlagStore::prune() {
    const Instant now = clock_.now();
    std::vector<std::string> lapsed;
    std::vector<std::string> lapsedDismissals;
    for (const auto& [key, date] : state_.dates) {
        if (now - date > prioTTL && state_.prio.contains(key)) lapsed.push_back(key);
        if (now - date > clearedTTL && state_.cleared.contains(key)) lapsedDismissals.push_back(key);
    }
    dropPriorities(lapsed);
    if (!lapsedDismissals.empty()) announceChange();
    for (const std::string& key : lapsedDismissals) {
        state_.cleared.erase(key);
        state_.hidden.erase(key);
    }
    // Time alone puts no dismissal after a priority, so topics are compared only after a change.
    if (!std::exchange(topicsCompared_, true)) dropPriorities(dismissedPriorities(state_, topics_));
    lapsed.clear();
    for (const auto& [key, first] : state_.firstFlagged) {
        if (now - first > prioMaxAge && state_.prio.contains(key)) lapsed.push_back(key);
    }
    dropPriorities(lapsed);

    const auto isFlagged = [this](const std::string& key) { return isPrio(key) || isCleared(key); };
    std::erase_if(state_.firstFlagged, [this](const auto& entry) { return !isPrio(entry.first); });
    std::erase_if(state_.dates, [&](const auto& entry) { return !isFlagged(entry.first); });
    const auto isStray = [&](const std::string& key) { return !isFlagged(key); };
    if (std::any_of(state_.hidden.begin(), state_.hidden.end(), isStray)) {
        announceChange();
        std::erase_if(state_.hidden, isStray);
    }
}

void ItemFlagStore::dropPriorities(const std::vector<std::string>& keys) {
    if (keys.empty()) return;
    announceChange();
    for (const std::string& key : keys)
        state_.prio.erase(key);
}

bool ItemFlagStore::take(const StoreFile::Incoming& incoming) {
    auto decoded = decodeFlags(incoming.content);
    if (!decoded) return false;
    if (incoming.mustMerge) {
        const auto base = incoming.base != nullptr ? decodeFlags(*incoming.base) : std::nullopt;
        *decoded = mergeFlags(base.value_or(FlagState{}), state_, *decoded);
    }
    beginChange();
    state_ = std::move(*decoded);
    const Instant now = clock_.now();
    for (const auto& [key, text] : state_.prio) {
        const auto date = state_.dates.find(key);
        state_.firstFlagged.try_emplace(key, date == state_.dates.end() ? now : date->second);
    }
    std::erase_if(state_.prio, [this](const auto& entry) { return !state_.dates.contains(entry.first); });
    for (const auto& [key, text] : state_.cleared)
        state_.dates.try_emplace(key, now);
    prune();
    return true;
}

bool ItemFlagStore::takeFeedback(const StoreFile::Incoming& incoming) {
    auto told = decodeFeedbackLists(incoming.content);
    if (!told) return false;
    untouched_ = std::move(told->untouched);
    reminders_ = std::move(told->reminders);
    return true;
}

bool ItemFlagStore::takeAndTell(const StoreFile::Incoming& incoming) {
    if (!take(incoming)) return false;
    writeFeedback();
    return true;
}

// A change here must build on what another program has written meanwhile, not replace it.
void ItemFlagStore::adoptForeignChanges() {
    if (!file_.changedOnDisk()) return;
    file_.reload([this](const StoreFile::Incoming& incoming) { return takeAndTell(incoming); });
}

void ItemFlagStore::reloadIfChangedExternally() {
    const auto mtime = file_.modificationTime();
    if (!mtime) {
        if (file_.wentWithItsFolder()) save();
        return;
    }
    // The first look has no time to compare with, but something may have happened since the file was loaded.
    if (lastKnownMtime_ ? *mtime > *lastKnownMtime_ : file_.changedOnDisk()) {
        files_.ensureDownloaded(file_.path(), StoreFiles::downloadTimeout);
        const auto outcome =
            file_.reload([this](const StoreFile::Incoming& incoming) { return takeAndTell(incoming); });
        announceChange();
        if (outcome == StoreFile::Reload::merged) save();
    }
    lastKnownMtime_ = mtime;
}

void ItemFlagStore::save() {
    prune();
    file_.writeAsync(encodeFlags(state_));
    lastKnownMtime_ = file_.modificationTime();
    writeFeedback();
}

void ItemFlagStore::writeFeedback() {
    prune();
    Feedback feedback;
    feedback.untouched = untouched_;
    feedback.reminders = reminders_;
    for (const auto& [key, text] : state_.prio) {
        const auto date = state_.dates.find(key);
        feedback.prio.push_back({text, date == state_.dates.end() ? clock_.now() : date->second});
    }
    for (const auto& [key, text] : state_.cleared)
        feedback.cleared.push_back(text);
    feedbackFile_.writeAsync(encodeFeedback(feedback, clock_));
}

}  // namespace sunpane
