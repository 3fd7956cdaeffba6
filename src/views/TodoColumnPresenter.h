#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "app/NotchUndo.h"
#include "app/NotchViewModel.h"
#include "base/RunLoop.h"
#include "base/Subscription.h"
#include "calendar/CalendarFallback.h"
#include "core/DateDetector.h"
#include "notch/ScrollSwipeHub.h"
#include "notch/SwipeRecognizer.h"
#include "views/SpringCurve.h"
#include "views/TodoListModel.h"

namespace sunpane {

/// Carries the todo list to the panel's todo column and what the user does there back. Holds no rules. Part of the
/// PanelPresenter; main thread only. An id that is not in the list any more does nothing.
class TodoColumnPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(sunpane::TodoListModel* list READ list CONSTANT)
    Q_PROPERTY(int doneCount READ doneCount NOTIFY changed)
    /// The id of the todo that was revealed a moment ago; empty when there is none.
    Q_PROPERTY(QString highlighted READ highlighted NOTIFY highlightedChanged)
    /// How the rows move that the latest change concerns.
    Q_PROPERTY(sunpane::SpringCurve motion READ motion NOTIFY motionChanged)
    /// How a row leaves the list's grid under the pointer, and how one springs back that was let go too early.
    Q_PROPERTY(sunpane::SpringCurve liftSpring READ liftSpring CONSTANT)
    Q_PROPERTY(sunpane::SpringCurve returnSpring READ returnSpring CONSTANT)
    /// The row that two fingers swipe, and how far (points) it has come, positive to the right; empty for none.
    Q_PROPERTY(QString swipedId READ swipedId NOTIFY swipeChanged)
    Q_PROPERTY(qreal swipeX READ swipeX NOTIFY swipeChanged)
    /// How far a row must be swiped.
    Q_PROPERTY(qreal swipeThreshold READ swipeThreshold CONSTANT)
    /// The media type under which a dragged card of the briefing says more of itself than its words.
    Q_PROPERTY(QString cardType READ cardType CONSTANT)
    Q_PROPERTY(qreal rowHeight READ rowHeight CONSTANT)
    /// A press that moves less than this is no drag.
    Q_PROPERTY(qreal dragDistance READ dragDistance CONSTANT)

public:
    struct Collaborators {
        NotchViewModel& viewModel;
        CalendarFallback& calendar;
        NotchUndo& undo;
        RunLoop& runLoop;
        Clock& clock;
        LocalNotifications& notifications;
        ScrollSwipeHub& scrollSwipes;
    };

    /// The panel takes the keyboard that long (s) after it was opened to write down a todo.
    static constexpr Seconds captureDelay = 0.25;

    /// A row that was swiped away stays out of sight that long (s), until it is gone.
    static constexpr Seconds swipedAwayDelay = 0.25;
    /// While the panel is open, what depends on the time is shown anew this often (s).
    static constexpr Seconds clockInterval = 20;

    explicit TodoColumnPresenter(const Collaborators& collaborators);

    TodoListModel* list() { return &list_; }
    int doneCount() const { return doneCount_; }
    const QString& highlighted() const { return highlighted_; }
    const SpringCurve& motion() const { return motion_; }
    SpringCurve liftSpring() const { return liftSpring_; }
    SpringCurve returnSpring() const { return returnSpring_; }
    const QString& swipedId() const { return swipedId_; }
    qreal swipeX() const { return swipeX_; }
    static qreal swipeThreshold();
    static QString cardType();
    static qreal rowHeight();
    static qreal dragDistance();

    /// Whether the panel is open only to write down one todo.
    Q_INVOKABLE bool isCapturing() const { return capturing_; }

    /// What was typed into the field and not entered, also before the program was started.
    Q_INVOKABLE QString draft() const;
    Q_INVOKABLE void setDraft(const QString& text);
    /// Adds what was typed; that ends a capture and folds the panel.
    Q_INVOKABLE void submit(const QString& text);
    /// Folds the panel at the user's wish.
    Q_INVOKABLE void collapse();

    Q_INVOKABLE void toggle(const QString& id);
    Q_INVOKABLE void togglePriority(const QString& id);
    Q_INVOKABLE void remove(const QString& id);
    /// The panel gets the keyboard for the text that is about to be edited.
    Q_INVOKABLE void editBegins();
    Q_INVOKABLE void rename(const QString& id, const QString& text);
    /// Ends a swipe of `dx`; false when it did not go far enough.
    Q_INVOKABLE bool swipe(const QString& id, qreal dx);
    /// The pointer rests on a row, or left it: two fingers swipe the row under the pointer.
    Q_INVOKABLE void pointerEntered(const QString& id);
    Q_INVOKABLE void pointerLeft(const QString& id);

    /// Reminds at `time` (s since 1970) and again by `rule`; an empty one means once.
    Q_INVOKABLE void setReminder(const QString& id, double time, const QString& rule);
    Q_INVOKABLE void clearReminder(const QString& id);
    /// Writes the date that the todo speaks of into the user's calendar. Without access, or without a date, nothing.
    Q_INVOKABLE void addToCalendar(const QString& id);

    Q_INVOKABLE bool isVerticalDrag(qreal dx, qreal dy) const;
    /// The row on which a row that was dragged down by `dy` would land, within its group.
    Q_INVOKABLE int dropRow(int startRow, qreal dy) const;
    /// The same for the keyboard: `rows` further down.
    Q_INVOKABLE int rowBeside(int startRow, int rows) const;
    /// How fast (points/s) the list scrolls under a row that is dragged to `y`, by `dy`.
    Q_INVOKABLE qreal scrollSpeed(qreal y, qreal height, qreal dy) const;
    /// Moves to a row that one of the two told.
    Q_INVOKABLE void moveTo(const QString& id, int row);
    Q_INVOKABLE void addDropped(const QString& text);
    /// A card of the briefing is about to become a todo: the rows that give way to it move as for a dropped one.
    void makeRoom();

signals:
    void changed();
    void highlightedChanged();
    void motionChanged();
    void swipeChanged();
    /// The capture field is to take the keyboard.
    void captureFocusRequested();
    /// The capture is over: the field lets the keyboard go.
    void captureEnded();
    /// What was done without words on the screen, for those who hear the program.
    void announced(const QString& text);

private:
    TodoStore& todos() { return with_.viewModel.todoStore(); }
    void scheduleRefresh();
    void refresh();
    void beginCapture();
    // Whatever folds the panel ends the capture, or the next todo that is typed would fold it too.
    void endCapture();
    // What follows moves with this spring.
    void moveWith(const Spring& spring);
    std::optional<Todo> find(const QString& id);
    bool takeScroll(const ScrollEvent& event);
    void finishScroll(qreal dx);
    void setSwipe(const QString& id, qreal dx);
    // The date that an open todo speaks of, when it is still to come.
    std::optional<DetectedDate> upcomingDate(const Todo& todo);

    Collaborators with_;
    DateDetector dates_;
    TodoListModel list_;
    int doneCount_ = 0;
    QString highlighted_;
    SpringCurve motion_;
    SpringCurve liftSpring_{Spring{0.2, 1.0}};
    SpringCurve returnSpring_{Spring{0.3, 0.7}};
    bool capturing_ = false;
    QString hoveredId_;
    QString swipedId_;
    qreal swipeX_ = 0;
    SwipeRecognizer gesture_;
    Subscription scrolling_;
    Subscription swipedAway_;
    // Todos whose event is being written.
    std::set<Uuid> writing_;
    // Ticks only while the panel is open.
    Subscription clockTimer_;
    bool ticking_ = false;
    Subscription captureFocus_;
    Subscription captureRequests_;
    Subscription collapses_;
    Subscription storeChanges_;
    Subscription modelChanges_;
    bool refreshPosted_ = false;
    // Posted tasks hold this weakly.
    std::shared_ptr<TodoColumnPresenter*> self_;
};

}  // namespace sunpane
