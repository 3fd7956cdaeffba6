#include "views/TodoColumnPresenter.h"

#include <cmath>
#include <utility>

#include "app/CardActions.h"
#include "app/TodoActions.h"
#include "base/NotificationNames.h"
#include "views/TodoRules.h"

namespace sunpane {
namespace {

constexpr Spring addSpring{0.3, 0.8};
constexpr Spring toggleSpring{0.35, 0.78};
constexpr Spring flagSpring{0.32, 0.76};
constexpr Spring removeSpring{0.22, 1.0};
constexpr Spring eventSpring{0.3, 0.7};

}  // namespace

TodoColumnPresenter::TodoColumnPresenter(const Collaborators& collaborators)
    : with_(collaborators),
      dates_(collaborators.clock),
      list_(collaborators.clock,
            [this](const Todo& todo) {
                const auto date = upcomingDate(todo);
                return date ? todo_rules::addToCalendarHelp(date->date, with_.clock) : std::string();
            }),
      motion_(addSpring),
      self_(std::make_shared<TodoColumnPresenter*>(this)) {
    captureRequests_ =
        with_.notifications.observe(notification::quickCaptureFocus, [this](const auto&) { beginCapture(); });
    collapses_ = with_.notifications.observe(notification::collapseNotch, [this](const auto&) { endCapture(); });
    storeChanges_ = todos().onWillChange([this] { scheduleRefresh(); });
    modelChanges_ = with_.viewModel.onWillChange([this] { scheduleRefresh(); });
    scrolling_ = with_.scrollSwipes.add([this](const ScrollEvent& event) { return takeScroll(event); });
    with_.undo.animate = [weak = std::weak_ptr(self_)](const Spring& spring, const NotchUndo::Action& action) {
        if (const auto self = weak.lock()) (*self)->moveWith(spring);
        action();
    };
    refresh();
}

qreal TodoColumnPresenter::swipeThreshold() {
    return todo_rules::swipeThreshold;
}

QString TodoColumnPresenter::cardType() {
    return QLatin1String(card_actions::dragType);
}

qreal TodoColumnPresenter::rowHeight() {
    return todo_rules::rowHeight;
}

qreal TodoColumnPresenter::dragDistance() {
    return todo_rules::dragDistance;
}

void TodoColumnPresenter::scheduleRefresh() {
    if (std::exchange(refreshPosted_, true)) return;
    with_.runLoop.post([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock()) (*self)->refresh();
    });
}

void TodoColumnPresenter::refresh() {
    refreshPosted_ = false;
    list_.show(todos().todos());
    if (!hoveredId_.isEmpty() && list_.rowOf(hoveredId_) < 0) pointerLeft(QString(hoveredId_));
    doneCount_ = static_cast<int>(todos().doneCount());
    const auto& highlight = with_.viewModel.highlightTodoID();
    const QString highlighted = highlight ? QString::fromStdString(highlight->toString()) : QString();
    if (std::exchange(highlighted_, highlighted) != highlighted) emit highlightedChanged();
    const bool expanded = with_.viewModel.expanded();
    if (std::exchange(ticking_, expanded) != expanded) {
        if (expanded) {
            list_.timePassed();
        } else {
            endCapture();
        }
        clockTimer_ = expanded ? with_.runLoop.every(clockInterval, [this] { list_.timePassed(); }) : Subscription();
    }
    emit changed();
}

void TodoColumnPresenter::beginCapture() {
    capturing_ = true;
    // At once, so that a quick typist loses no letter, and again when the panel has opened.
    emit captureFocusRequested();
    captureFocus_ = with_.runLoop.after(captureDelay, [this] { emit captureFocusRequested(); });
}

void TodoColumnPresenter::endCapture() {
    captureFocus_ = {};
    if (std::exchange(capturing_, false)) emit captureEnded();
}

void TodoColumnPresenter::moveWith(const Spring& spring) {
    motion_ = SpringCurve(spring);
    emit motionChanged();
}

std::optional<Todo> TodoColumnPresenter::find(const QString& id) {
    const auto uuid = Uuid::parse(id.toStdString());
    const auto index = uuid ? todos().indexOf(*uuid) : std::nullopt;
    return index ? std::optional(todos().todos()[*index]) : std::nullopt;
}

QString TodoColumnPresenter::draft() const {
    return QString::fromStdString(with_.viewModel.captureDraft().text());
}

void TodoColumnPresenter::setDraft(const QString& text) {
    with_.viewModel.captureDraft().set(text.toStdString());
}

void TodoColumnPresenter::submit(const QString& text) {
    moveWith(addSpring);
    const auto before = todos().todos().size();
    todos().add(text.toStdString());
    // Nothing but spaces is no todo.
    if (todos().todos().size() > before) emit announced(tr("Added: %1").arg(text.trimmed()));
    if (capturing_) collapse();
}

void TodoColumnPresenter::collapse() {
    with_.notifications.post(notification::collapseNotch);
}

void TodoColumnPresenter::toggle(const QString& id) {
    const auto todo = find(id);
    if (!todo) return;
    moveWith(toggleSpring);
    todo_actions::toggle(todos(), todo->id);
}

void TodoColumnPresenter::togglePriority(const QString& id) {
    const auto todo = find(id);
    if (!todo) return;
    moveWith(flagSpring);
    todos().setPrio(todo->id, !todo->isPrio());
    emit announced(todo->isPrio() ? tr("Priority removed") : tr("Marked as priority"));
}

void TodoColumnPresenter::remove(const QString& id) {
    const auto todo = find(id);
    if (!todo) return;
    moveWith(removeSpring);
    todo_actions::removeWithUndo(todos(), todo->id, with_.undo);
    emit announced(tr("Deleted: %1").arg(QString::fromStdString(todo->text)));
}

void TodoColumnPresenter::editBegins() {
    with_.notifications.post(notification::makeNotchKey);
}

void TodoColumnPresenter::rename(const QString& id, const QString& text) {
    if (const auto todo = find(id)) todo_actions::renameWithUndo(todos(), todo->id, text.toStdString(), with_.undo);
}

bool TodoColumnPresenter::swipe(const QString& id, qreal dx) {
    switch (todo_rules::swipeOutcome(dx)) {
        case todo_rules::Swipe::togglePriority:
            togglePriority(id);
            return true;
        case todo_rules::Swipe::remove:
            remove(id);
            return true;
        case todo_rules::Swipe::none:
            return false;
    }
    return false;
}

bool TodoColumnPresenter::takeScroll(const ScrollEvent& event) {
    // The clicks of a wheel scroll the list.
    if (hoveredId_.isEmpty() || (event.phase == ScrollPhase::none && event.momentumPhase == ScrollPhase::none))
        return false;
    const auto step = gesture_.take(event);
    if (step == SwipeRecognizer::Step::passed) return false;
    if (step == SwipeRecognizer::Step::finished) {
        finishScroll(gesture_.offset());
        gesture_.release();
    } else if (gesture_.offset() != 0) {
        setSwipe(hoveredId_, gesture_.offset());
    } else {
        // Nothing moves yet, and the row that was swiped before is to spring back.
        setSwipe({}, 0);
    }
    return true;
}

void TodoColumnPresenter::finishScroll(qreal dx) {
    const bool away = todo_rules::swipeOutcome(dx) == todo_rules::Swipe::remove;
    swipe(hoveredId_, dx);
    if (away) {
        swipedAway_ = with_.runLoop.after(swipedAwayDelay, [this] { setSwipe({}, 0); });
    } else {
        setSwipe({}, 0);
    }
}

void TodoColumnPresenter::setSwipe(const QString& id, qreal dx) {
    swipedAway_ = {};
    if (swipedId_ == id && swipeX_ == dx) return;
    swipedId_ = id;
    swipeX_ = dx;
    emit swipeChanged();
}

void TodoColumnPresenter::pointerEntered(const QString& id) {
    // A row that was deleted is still seen for a moment.
    if (list_.rowOf(id) >= 0) hoveredId_ = id;
}

void TodoColumnPresenter::pointerLeft(const QString& id) {
    if (hoveredId_ != id) return;
    hoveredId_.clear();
    gesture_.release();
    if (swipedId_ == id && !swipedAway_) setSwipe({}, 0);
}

void TodoColumnPresenter::setReminder(const QString& id, double time, const QString& rule) {
    const auto todo = find(id);
    if (!todo || !std::isfinite(time)) return;
    moveWith(addSpring);
    todos().setReminder(todo->id, Instant::fromUnix(time),
                        rule.isEmpty() ? std::nullopt : std::optional(rule.toStdString()));
    emit announced(tr("Reminder set"));
}

void TodoColumnPresenter::clearReminder(const QString& id) {
    const auto todo = find(id);
    if (!todo) return;
    moveWith(addSpring);
    todos().setReminder(todo->id, std::nullopt, std::nullopt);
    emit announced(tr("Reminder cleared"));
}

std::optional<DetectedDate> TodoColumnPresenter::upcomingDate(const Todo& todo) {
    if (todo.done || todo.eventID) return std::nullopt;
    const auto date = dates_.firstDate(todo.text);
    return date && date->date > with_.clock.now() ? date : std::nullopt;
}

void TodoColumnPresenter::addToCalendar(const QString& id) {
    const auto todo = find(id);
    const auto date = todo ? upcomingDate(*todo) : std::nullopt;
    // Until it is written the button is still there.
    if (!date || !writing_.insert(todo->id).second) return;
    const auto written = [weak = std::weak_ptr(self_), uuid = todo->id](const std::optional<std::string>& event) {
        const auto self = weak.lock();
        if (!self) return;
        (*self)->writing_.erase(uuid);
        if (!event) return;
        (*self)->moveWith(eventSpring);
        (*self)->todos().setEventID(event, uuid);
        emit(*self)->announced(tr("In your calendar"));
    };
    with_.calendar.ensureAccess([&calendar = with_.calendar, text = todo->text, date = *date, written](bool granted) {
        if (granted) {
            calendar.addEvent(text, date.date, date.duration, written);
        } else {
            written(std::nullopt);
        }
    });
}

bool TodoColumnPresenter::isVerticalDrag(qreal dx, qreal dy) const {
    return todo_rules::dragAxis(dx, dy) == todo_rules::Axis::vertical;
}

int TodoColumnPresenter::dropRow(int startRow, qreal dy) const {
    if (list_.todo(startRow) == nullptr) return startRow;
    const auto start = static_cast<std::size_t>(startRow);
    const auto target = todo_rules::dropIndex(start, dy, static_cast<std::size_t>(list_.count()));
    return static_cast<int>(todo_rules::landingIndex(list_.todos(), start, target));
}

int TodoColumnPresenter::rowBeside(int startRow, int rows) const {
    return dropRow(startRow, rows * todo_rules::rowHeight);
}

qreal TodoColumnPresenter::scrollSpeed(qreal y, qreal height, qreal dy) const {
    return todo_rules::scrollSpeed(y, height, dy);
}

void TodoColumnPresenter::moveTo(const QString& id, int row) {
    const auto todo = find(id);
    if (!todo || row < 0) return;
    moveWith(flagSpring);
    todos().move(todo->id, row);
    // At once: the row stands under the pointer already.
    refresh();
    if (const auto index = todos().indexOf(todo->id))
        emit announced(tr("Moved to place %1 of %2").arg(*index + 1).arg(todos().todos().size()));
}

void TodoColumnPresenter::makeRoom() {
    moveWith(flagSpring);
}

void TodoColumnPresenter::addDropped(const QString& text) {
    moveWith(flagSpring);
    todo_actions::addDropped(todos(), text.toStdString());
}

}  // namespace sunpane
