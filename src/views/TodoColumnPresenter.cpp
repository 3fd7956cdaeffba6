#include "views/TodoColumnPresenter.h"

#include <algorithm>
#include <utility>

#include "app/NotificationNames.h"
#include "app/TodoActions.h"
#include "views/TodoRules.h"

namespace sunpane {
namespace {

constexpr Spring addSpring{0.3, 0.8};
constexpr Spring toggleSpring{0.35, 0.78};
constexpr Spring flagSpring{0.32, 0.76};
constexpr Spring removeSpring{0.22, 1.0};

}  // namespace

TodoColumnPresenter::TodoColumnPresenter(const Collaborators& collaborators)
    : with_(collaborators),
      list_(collaborators.clock, [](const Todo&) { return std::string(); }),
      motion_(addSpring),
      self_(std::make_shared<TodoColumnPresenter*>(this)) {
    captureRequests_ =
        with_.notifications.observe(notification::quickCaptureFocus, [this](const auto&) { beginCapture(); });
    collapses_ = with_.notifications.observe(notification::collapseNotch, [this](const auto&) {
        capturing_ = false;
        captureFocus_ = {};
    });
    storeChanges_ = todos().onWillChange([this] { scheduleRefresh(); });
    modelChanges_ = with_.viewModel.onWillChange([this] { scheduleRefresh(); });
    refresh();
}

qreal TodoColumnPresenter::swipeThreshold() {
    return todo_rules::swipeThreshold;
}

qreal TodoColumnPresenter::rowHeight() {
    return todo_rules::rowHeight;
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
    doneCount_ = static_cast<int>(todos().doneCount());
    const auto& highlight = with_.viewModel.highlightTodoID();
    highlighted_ = highlight ? QString::fromStdString(highlight->toString()) : QString();
    emit changed();
}

void TodoColumnPresenter::beginCapture() {
    capturing_ = true;
    // At once, so that a quick typist loses no letter, and again when the panel's content surely exists.
    emit captureFocusRequested();
    captureFocus_ = with_.runLoop.after(captureDelay, [this] { emit captureFocusRequested(); });
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

void TodoColumnPresenter::submit(const QString& text) {
    moveWith(addSpring);
    todos().add(text.toStdString());
    if (std::exchange(capturing_, false)) collapse();
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
    todos().togglePrio(todo->id);
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

bool TodoColumnPresenter::isVerticalDrag(qreal dx, qreal dy) const {
    return todo_rules::dragAxis(dx, dy) == todo_rules::Axis::vertical;
}

int TodoColumnPresenter::dropRow(int startRow, qreal dy) const {
    const auto count = static_cast<std::size_t>(list_.count());
    if (startRow < 0 || count == 0) return startRow;
    return static_cast<int>(todo_rules::dropIndex(static_cast<std::size_t>(startRow), dy, count));
}

void TodoColumnPresenter::moveTo(const QString& id, int row) {
    const auto todo = find(id);
    if (!todo || row < 0) return;
    moveWith(flagSpring);
    todos().move(todo->id, row);
    if (const auto index = todos().indexOf(todo->id))
        emit announced(tr("Moved to place %1 of %2").arg(*index + 1).arg(todos().todos().size()));
}

void TodoColumnPresenter::addDropped(const QString& text) {
    moveWith(flagSpring);
    todo_actions::addDropped(todos(), text.toStdString());
}

}  // namespace sunpane
