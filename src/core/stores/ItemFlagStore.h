#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Clock.h"
#include "base/Observable.h"
#include "core/briefing/Briefing.h"
#include "core/stores/FlagFile.h"
#include "core/stores/StoreFile.h"
#include "core/stores/StoreFiles.h"
#include "core/stores/Topics.h"

namespace sunpane {

/// The keys of the priorities whose topic was dismissed after they were last flagged or referenced. The entries of
/// `topics` are replaced.
std::vector<std::string> dismissedPriorities(const FlagState& state, TopicIndex& topics);

/// Flags that the user put on briefing cards, kept by item key in `itemflags.json` beside the briefings.
///
/// One instance, owned by the view model; main thread only. A mutation announces itself, takes effect, and hands
/// `itemflags.json` and a new `feedback.json` for the agent to the store queue. Flags lapse by themselves; that is
/// noticed at the next mutation, load or feedback. Failures are silent and leave the last good state.
///
/// Texts that are not valid UTF-8 are repaired with U+FFFD.
class ItemFlagStore : public Observable {
public:
    static constexpr const char* fileName = "itemflags.json";
    static constexpr const char* feedbackName = "feedback.json";
    /// A priority lapses this long (s) after it was last flagged or referenced,
    static constexpr Seconds prioTTL = 172800;
    /// and this long after it was first flagged, whatever happened since.
    static constexpr Seconds prioMaxAge = 1209600;
    /// A dismissal lapses, with its hidden mark, this long after it was made.
    static constexpr Seconds clearedTTL = 1209600;
    /// A reference counts only when the last one is longer ago than this.
    static constexpr Seconds referenceInterval = 3600;
    static constexpr Seconds reloadInterval = 2.0;

    /// What the start does to the feedback.
    enum class FeedbackAtStart {
        /// Written anew; the owner is about to tell the untouched cards and the reminders.
        written,
        /// Left as it is until something changes. The untouched cards and the reminders that it tells stay told, for
        /// an owner that knows of none.
        kept,
    };

    /// Creates `directory` if it is missing and loads the file; may block for `StoreFiles::downloadTimeout`.
    ItemFlagStore(StoreFiles& files, const std::string& directory, FeedbackAtStart feedback = FeedbackAtStart::written);
    ~ItemFlagStore();

    bool isPrio(std::string_view key) const { return state_.prio.contains(std::string(key)); }
    bool isCleared(std::string_view key) const { return state_.cleared.contains(std::string(key)); }
    bool isHidden(std::string_view key) const { return state_.hidden.contains(std::string(key)); }

    const FlagState& state() const { return state_; }
    const std::string& fileURL() const { return file_.path(); }
    /// Whether a change is not in the files yet.
    bool hasUnwritten() const { return hasUnwrittenFlags() || feedbackFile_.hasUnwritten(); }
    /// The same without the feedback.
    bool hasUnwrittenFlags() const { return file_.hasUnwritten(); }
    /// Whether all flags outlive this process, being in the file or in a journal.
    bool isSafe() const { return file_.isSafe(); }
    /// Runs `then` once all changes made so far are in `itemflags.json`, perhaps at once; not at all when the store or
    /// the handle goes first. The feedback follows from that file, so nobody has to wait for it.
    [[nodiscard]] Subscription whenWritten(std::function<void()> then) { return file_.whenWritten(std::move(then)); }
    const std::string& feedbackURL() const { return feedbackFile_.path(); }

    void togglePrio(const BriefingItem& item);
    void toggleCleared(const BriefingItem& item);
    void hide(const BriefingItem& item);
    void unhide(const BriefingItem& item);
    void unclear(const BriefingItem& item);

    /// Follows the priority of a todo that was made from a card.
    void setPrio(const std::string& key, std::string_view text, bool on);

    /// What an operation on this store does to the flags, lapses and retired dismissals included.
    FlagChange during(const std::function<void()>& operation);
    /// Puts the cards of a change back, with the dates that they had.
    void takeBack(const FlagChange& change);

    /// Keeps priorities alive whose topic one of the texts still speaks of.
    void refreshPrioReferences(const std::vector<std::string>& texts);

    /// The cards that the user has not acted on, and the todos with a reminder, for the feedback only.
    void updateUntouched(const std::vector<std::string>& texts);
    void updateReminders(const std::vector<std::string>& lines);

    /// Drops what has lapsed and writes the feedback anew.
    void writeFeedback();

    /// As the free functions of Topics.h.
    static std::set<std::string> significantWords(std::string_view text) { return sunpane::significantWords(text); }
    static bool sameTopic(const std::set<std::string>& a, const std::set<std::string>& b) {
        return sunpane::sameTopic(a, b);
    }

private:
    void flag(const std::string& key, std::string text);
    void retireDismissals(const std::string& text);
    void prune();
    void dropPriorities(const std::vector<std::string>& keys);
    bool take(const StoreFile::Incoming& incoming);
    bool takeFeedback(const StoreFile::Incoming& incoming);
    bool takeAndTell(const StoreFile::Incoming& incoming);
    void adoptForeignChanges();
    void reloadIfChangedExternally();
    void save();
    // Opens a mutation: announces it and has the next pruning compare topics anew.
    void beginChange();

    StoreFiles& files_;
    const Clock& clock_;
    StoreFile file_;
    StoreFile feedbackFile_;
    FlagState state_;
    std::vector<std::string> untouched_;
    std::vector<std::string> reminders_;
    TopicIndex topics_;
    // Whether no priority can have become older than a dismissal of its topic since they were last compared.
    bool topicsCompared_ = false;
    std::optional<FileTime> lastKnownMtime_;
    Subscription reloadTimer_;
};

}  // namespace sunpane
