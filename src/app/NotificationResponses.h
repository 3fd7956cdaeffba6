#pragma once

#include "base/LocalNotifications.h"
#include "platform/UserNotifications.h"
#include "platform/Workspace.h"

namespace sunpane {

/// Answers the user's clicks on notifications: one about a meeting opens its link, or the panel when it has none; one
/// about a todo opens the panel and shows that todo.
///
/// One instance, owned by the start-up code; main thread only.
class NotificationResponses {
public:
    NotificationResponses(UserNotificationCenter& center, const LocalNotifications& notifications,
                          Workspace& workspace);
    ~NotificationResponses();
    NotificationResponses(const NotificationResponses&) = delete;
    NotificationResponses& operator=(const NotificationResponses&) = delete;

private:
    void respond(const NotificationResponse& response);

    UserNotificationCenter& center_;
    const LocalNotifications& notifications_;
    Workspace& workspace_;
};

}  // namespace sunpane
