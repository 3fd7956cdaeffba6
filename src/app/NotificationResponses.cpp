#include "app/NotificationResponses.h"

#include "base/NotificationNames.h"
#include "calendar/JoinLink.h"
#include "reminders/ReminderScheduler.h"

namespace sunpane {

NotificationResponses::NotificationResponses(UserNotificationCenter& center, const LocalNotifications& notifications,
                                             Workspace& workspace)
    : center_(center), notifications_(notifications), workspace_(workspace) {
    center_.setResponseHandler([this](const NotificationResponse& response) { respond(response); });
}

NotificationResponses::~NotificationResponses() {
    center_.setResponseHandler(nullptr);
}

void NotificationResponses::respond(const NotificationResponse& response) {
    if (response.identifier.starts_with(notification_id::meetingPrefix)) {
        const auto link = response.userInfo.find(notification_id::joinURLKey);
        if (link != response.userInfo.end() && isWebAddress(link->second)) {
            workspace_.openUrl(link->second);
        } else {
            notifications_.post(notification::revealTodo);
        }
    } else if (response.identifier.starts_with(notification_id::todoPrefix)) {
        notifications_.post(notification::revealTodo, response.identifier.substr(notification_id::todoPrefix.size()));
    }
}

}  // namespace sunpane
