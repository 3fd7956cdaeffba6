#include "app/TodoReminders.h"

#include <utility>

namespace sunpane {

TodoReminders::TodoReminders(const Collaborators& collaborators)
    : with_(collaborators),
      changes_(with_.todos.onWillChange([this] { followSoon(); })),
      self_(std::make_shared<TodoReminders*>(this)) {
    with_.center.pending([weak = std::weak_ptr(self_)](const std::vector<NotificationRequest>& pending) {
        if (const auto self = weak.lock()) (*self)->takeOver(pending);
    });
}

TodoReminders::Reminders TodoReminders::wanted() const {
    Reminders reminders;
    for (const auto& todo : with_.todos.todos()) {
        if (!todo.done && todo.remindAt) {
            reminders.insert_or_assign(todo.id, Reminder{todo.text, *todo.remindAt, todo.remindRepeat});
        }
    }
    return reminders;
}

void TodoReminders::takeOver(const std::vector<NotificationRequest>& pending) {
    scheduled_ = wanted();
    std::map<std::string, const NotificationRequest*> byIdentifier;
    for (const auto& request : pending)
        byIdentifier.emplace(request.identifier, &request);
    for (const auto& [id, reminder] : *scheduled_) {
        auto request = ReminderScheduler::todoRequest(id, reminder.text, reminder.date, reminder.rule, with_.clock);
        const auto found = byIdentifier.find(request.identifier);
        if (found != byIdentifier.end()) {
            // One that is due and waits for the service would be lost if it were set anew.
            const bool isDue = !request.trigger.repeats && reminder.date <= with_.clock.now();
            if (isDue || *found->second == ReminderScheduler::inPlaceOf(*found->second, std::move(request))) continue;
        }
        schedule(id, reminder);
    }
    // A list that holds nothing at all was never written, or could not be read: its reminders may still be wanted.
    const TodoStore& todos = with_.todos;
    if (todos.todos().empty() && todos.dismissed().empty() && todos.lastImportDay().empty()) return;
    for (const auto& [identifier, request] : byIdentifier) {
        if (!identifier.starts_with(notification_id::todoPrefix)) continue;
        const auto id = Uuid::parse(std::string_view(identifier).substr(notification_id::todoPrefix.size()));
        if (id && !scheduled_->contains(*id)) with_.scheduler.cancel(*id);
    }
}

void TodoReminders::followSoon() {
    if (std::exchange(isPosted_, true)) return;
    with_.runLoop.post([weak = std::weak_ptr(self_)] {
        const auto self = weak.lock();
        if (!self) return;
        (*self)->isPosted_ = false;
        (*self)->follow();
    });
}

void TodoReminders::follow() {
    if (!scheduled_) return;
    Reminders now = wanted();
    for (const auto& [id, reminder] : *scheduled_) {
        if (!now.contains(id)) with_.scheduler.cancel(id);
    }
    for (const auto& [id, reminder] : now) {
        const auto found = scheduled_->find(id);
        if (found == scheduled_->end() || found->second != reminder) schedule(id, reminder);
    }
    scheduled_ = std::move(now);
}

void TodoReminders::schedule(const Uuid& id, const Reminder& reminder) {
    with_.scheduler.schedule(id, reminder.text, reminder.date, reminder.rule);
}

}  // namespace sunpane
