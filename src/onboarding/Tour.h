#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/LocalNotifications.h"
#include "base/Observable.h"
#include "base/RunLoop.h"
#include "calendar/CalendarFallback.h"
#include "platform/CalendarStore.h"
#include "platform/Pasteboard.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

namespace sunpane {

/// The welcome tour: what the panel does, the task for the user's assistant, the calendar. It comes back at every start
/// until it was gone through to its end.
///
/// One instance, owned by the start-up code; main thread only.
class Tour : public Observable {
public:
    /// So long (s) is a copy confirmed.
    static constexpr Seconds copiedTime = 2;

    enum class Step : std::uint8_t { intro, connect, done };
    /// Whether the user's assistant writes a briefing already, or has to be set up.
    enum class Path : std::uint8_t { haveBrief, needBrief };

    /// Everything outlives it.
    struct Collaborators {
        UserDefaults& defaults;
        LocalNotifications& notifications;
        RunLoop& runLoop;
        CalendarStore& calendars;
        CalendarFallback& calendar;
        Workspace& workspace;
        Pasteboard& pasteboard;
        /// Lets the user change what the program may do with the calendars, and calls back.
        std::function<void(std::function<void()> done)> openCalendarPrivacy;
    };

    explicit Tour(Collaborators collaborators);

    Step step() const { return step_; }
    Path path() const { return path_; }
    /// 0 for the morning task, 1 for the evening task; only counts for `needBrief`.
    int briefTab() const { return briefTab_; }
    bool copied() const { return copied_; }
    bool skippedAI() const { return skippedAI_; }
    /// As it was when the last step began, when the user was asked from there, or when he came back to it.
    CalendarAccess calendarStatus() const { return calendarStatus_; }

    /// Back to the first step, for a window that opens again.
    void begin();
    void connectAI();
    void skipAI();
    void finish();
    void choosePath(Path path);
    void chooseBriefTab(int tab);

    /// The task that is chosen, around the briefings folder of now.
    std::string currentPrompt() const;
    void copy();

    /// The user is back from another window, where he may have answered for the calendars.
    void comeBack();
    void connectCalendar();
    void openCalendarSettings();
    void openAccountSettings() { with_.workspace.openAccountSettings(); }

    /// The tour was gone through and does not come back.
    void complete();

private:
    void goTo(Step step);
    void readCalendarStatus();
    template <class T>
    void change(T& field, T value);

    Collaborators with_;
    Step step_ = Step::intro;
    Path path_ = Path::needBrief;
    int briefTab_ = 0;
    bool copied_ = false;
    bool skippedAI_ = false;
    CalendarAccess calendarStatus_ = CalendarAccess::notDetermined;
    Subscription copiedTimer_;
    Subscription folderChanges_;
    std::shared_ptr<Tour*> self_;
};

}  // namespace sunpane
