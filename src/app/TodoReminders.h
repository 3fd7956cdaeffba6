#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/Instant.h"
#include "base/RunLoop.h"
#include "base/Subscription.h"
#include "base/Uuid.h"
#include "core/stores/TodoStore.h"
#include "platform/UserNotifications.h"
#include "reminders/ReminderScheduler.h"

namespace sunpane {

/// Keeps the pending notifications in step with the todo list: one for each open todo with a reminder, none for any
/// other. Whoever sets a reminder, completes, renames, deletes or restores a todo, here, from the command line or on
/// another device, only changes the store.
///
/// One instance, owned by the start-up code; main thread only.
class TodoReminders {
public:
    struct Collaborators {
        TodoStore& todos;
        ReminderScheduler& scheduler;
        UserNotificationCenter& center;
        const Clock& clock;
        RunLoop& runLoop;
    };

    /// Starts following. What is pending from an earlier run stays as it is where it is still right.
    explicit TodoReminders(const Collaborators& collaborators);

private:
    struct Reminder {
        std::string text;
        Instant date;
        std::optional<std::string> rule;
        friend bool operator==(const Reminder&, const Reminder&) = default;
    };
    using Reminders = std::map<Uuid, Reminder>;

    Reminders wanted() const;
    void takeOver(const std::vector<NotificationRequest>& pending);
    void followSoon();
    void follow();
    void schedule(const Uuid& id, const Reminder& reminder);

    Collaborators with_;
    // What the scheduler was told last; absent until what is pending is known.
    std::optional<Reminders> scheduled_;
    bool isPosted_ = false;
    Subscription changes_;
    std::shared_ptr<TodoReminders*> self_;
};

}  // namespace sunpane
