#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/CaptureDraft.h"
#include "base/Clock.h"
#include "base/LocalNotifications.h"
#include "base/NotificationNames.h"
#include "base/Observable.h"
#include "base/RunLoop.h"
#include "base/Spring.h"
#include "base/Uuid.h"
#include "base/WorkQueue.h"
#include "calendar/CalendarFallback.h"
#include "calendar/MeetingWatcher.h"
#include "core/briefing/Briefing.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "core/stores/ItemFlagStore.h"
#include "core/stores/StoreFiles.h"
#include "core/stores/TodoStore.h"
#include "nowplaying/NowPlaying.h"
#include "platform/UserDefaults.h"

namespace sunpane {

/// The program's one central state: which briefings are listed and which is on screen, whether the newest is unread,
/// and whether the panel is folded open. Owns the todos and the flags, brings the newest briefing's action items and
/// the calendar's tasks into the todos, and tells the flag store what `feedback.json` needs to know. On a day without
/// a briefing the calendar's schedule comes first in the list.
///
/// The stores keep the folder that was current when the view model was made: whoever looks at another folder has the
/// same todos, reminders and flags as before, and what an undo puts back is still there.
///
/// One instance, created by the start-up code; it lives as long as the process. Main thread only.
class NotchViewModel : public Observable {
public:
    /// How the panel unfolds and folds, whatever makes it.
    static constexpr Spring unfolding{0.38, 0.82};
    static constexpr Spring folding{0.3, 0.95};
    static constexpr Seconds cleanupInterval = 43200;
    static constexpr Seconds rolloverInterval = 1800;
    static constexpr int keptDays = 30;
    /// After a collapse that did not come from the pointer, hovering does not unfold for this long.
    static constexpr Seconds suppressAfterCollapse = 1.2;
    static constexpr Seconds keepOpenAfterReveal = 5;
    /// Nothing keeps the panel open for longer than this. What seems to is from before the clock was set back.
    static constexpr Seconds longestKeepOpen = 30;
    /// How long a revealed todo is highlighted.
    static constexpr Seconds highlightDuration = 3;
    /// Store changes are collected this long before what is derived from them is computed again.
    static constexpr Seconds storeDebounce = 1;
    /// The agent is told of at most this many cards that were left untouched.
    static constexpr std::size_t maximumUntouched = 25;

    struct Collaborators {
        Clock& clock;
        RunLoop& runLoop;
        LocalNotifications& notifications;
        const UserDefaults& defaults;
        FolderBriefingProvider::Ports provider;
        StoreFiles& storeFiles;
        CalendarFallback& calendar;
        MeetingWatcher& meetings;
        NowPlaying& nowPlaying;
    };

    explicit NotchViewModel(const Collaborators& collaborators);
    ~NotchViewModel();

    /// Wires everything and starts watching the briefings folder. Called once.
    void start();

    /// Brings the briefings and the calendar's schedule and tasks of now into the list and the stores, on the main
    /// loop.
    void reapply();

    /// Folds the panel open or shut. Opening it marks everything as read and looks for the next meeting.
    /// What plays is followed while it is open.
    void setExpanded(bool expanded);

    /// Where the todos and the flags are.
    const std::string& storesFolder() const { return storesFolder_; }
    TodoStore& todoStore() { return todoStore_; }
    ItemFlagStore& flagStore() { return *flagStore_; }
    CaptureDraft& captureDraft() { return captureDraft_; }
    /// For what may outlive the view model.
    std::weak_ptr<ItemFlagStore> weakFlagStore() const { return flagStore_; }

    /// The briefings shown, newest first.
    const std::vector<Briefing>& briefings() const { return briefings_; }
    std::size_t currentIndex() const { return currentIndex_; }
    /// The briefing on screen; null without one.
    const Briefing* current() const;

    bool canGoOlder() const { return currentIndex_ + 1 < briefings_.size(); }
    bool canGoNewer() const { return currentIndex_ > 0; }
    void older();
    void newer();

    bool expanded() const { return expanded_; }
    /// Whether the newest briefing changed since the panel was last opened.
    bool hasUnread() const { return hasUnread_; }
    /// How many menus are open that must keep the panel from folding.
    int reminderUIOpen() const { return reminderUIOpen_; }
    void setReminderUIOpen(int count);

    /// The todo that was revealed a moment ago.
    const std::optional<Uuid>& highlightTodoID() const { return highlightTodoID_; }

    /// The panel must not be folded before this time.
    void setKeepOpenUntil(Instant instant) { keepOpenUntil_ = instant; }
    /// Hovering must not unfold the panel before this time.
    Instant suppressExpandUntil() const { return suppressExpandUntil_; }
    void setSuppressExpandUntil(Instant instant) { suppressExpandUntil_ = instant; }
    /// Whether one of the two holds now.
    bool isKeptOpen() const { return holds(keepOpenUntil_, longestKeepOpen); }
    bool isExpandSuppressed() const { return holds(suppressExpandUntil_, suppressAfterCollapse); }

    /// The measured height (points) of the briefing column's content; 0 until it was measured.
    double briefContentHeight() const { return briefContentHeight_; }
    /// Takes a new measurement. Anything below 1 counts as 1, and a change of half a point or less is ignored, which
    /// keeps the panel from oscillating. Whether it is taken, which happens on the main loop.
    bool reportBriefContentHeight(double height);

private:
    bool holds(Instant until, Seconds longest) const;
    void startProvider();
    void apply(std::vector<Briefing> items);
    // Goes on with the list that waited, if there still is one.
    void applyWithSchedule(bool granted);
    // Lists `items` and brings the newest one's contents into the stores.
    void publish(std::vector<Briefing> items);
    // Only lists them: while the calendars are being read the newest may be an earlier day's, whose todos and cards
    // must not come back in place of today's.
    void show(std::vector<Briefing> items);
    void followCalendar();
    void reveal(std::optional<Uuid> todoID);
    void setHighlight(std::optional<Uuid> todoID);
    void updateUnread(const Briefing* newest);
    void watchStores();
    void recomputeUntouched();
    void pushReminders();
    void refreshPrioReferences();
    // Runs `task` on the main loop unless the view model is gone by then.
    void postToMain(std::function<void(NotchViewModel&)> task);

    Collaborators with_;
    const std::string storesFolder_;
    CaptureDraft captureDraft_;
    TodoStore todoStore_;
    std::shared_ptr<ItemFlagStore> flagStore_;
    std::vector<Briefing> briefings_;
    std::size_t currentIndex_ = 0;
    bool expanded_ = false;
    bool hasUnread_ = false;
    int reminderUIOpen_ = 0;
    std::optional<Uuid> highlightTodoID_;
    Instant keepOpenUntil_ = Instant::distantPast();
    Instant suppressExpandUntil_ = Instant::distantPast();
    double briefContentHeight_ = 0;

    std::unique_ptr<BriefingProvider> provider_;
    std::vector<Briefing> lastProviderItems_;
    // The newest list, while it waits for the user to say whether the calendars may be read.
    std::optional<std::vector<Briefing>> awaitingAccess_;
    bool isAskingForAccess_ = false;
    std::optional<std::size_t> lastNewestHash_;
    // Whether the newest of the list is the one that the stores work with; not before the calendars were read.
    bool isNewestKnown_ = false;
    // Whether the newest briefing was chosen before the calendars were read, so that their schedule is no news.
    bool chosenWithoutCalendar_ = false;
    Subscription highlightEnd_;
    Subscription cleanupTimer_;
    Subscription rolloverTimer_;
    std::vector<Subscription> observers_;
    Debouncer flagsSettled_;
    Debouncer todosSettled_;
    // Shared with whatever may call back from another thread or later.
    std::shared_ptr<NotchViewModel*> self_;
};

}  // namespace sunpane
