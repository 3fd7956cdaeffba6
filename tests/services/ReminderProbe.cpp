#include <QCoreApplication>
#include <QSocketNotifier>
#include <iostream>
#include <string>

#include "linux/desktop/DesktopNotificationService.h"
#include "linux/desktop/QtRunLoop.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/SystemClock.h"
#include "linux/system/ThreadWorkQueue.h"
#include "linux/system/XdgPaths.h"
#include "reminders/PendingNotifications.h"

// The user's notifications on the real clock and service: "IDENTIFIER SECONDS LINK" sets a notification for a moment
// from now, "status" tells whether notifications can be shown; every click is printed with what came along.
int main(int argc, char* argv[]) {
    using namespace sunpane;
    const QCoreApplication application(argc, argv);
    const SystemClock clock;
    QtRunLoop runLoop;
    ThreadWorkQueueFactory queues;
    PosixFileSystem files;
    DesktopNotificationService service;
    files.createFolders(xdg::stateFolder());
    PendingNotifications center({service, clock, runLoop, files, queues}, xdg::stateFolder() + "/notifications.json");
    center.setResponseHandler([](const NotificationResponse& response) {
        std::cout << "clicked " << response.identifier;
        for (const auto& [key, value] : response.userInfo)
            std::cout << ' ' << key << '=' << value;
        std::cout << std::endl;
    });
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        std::string identifier;
        if (!(std::cin >> identifier)) return QCoreApplication::quit();
        if (identifier == "status") {
            center.authorization([](NotificationAuthorization authorization) {
                std::cout << (authorization == NotificationAuthorization::denied ? "denied" : "allowed") << std::endl;
            });
            return;
        }
        double seconds = 0;
        std::string link;
        std::cin >> seconds >> link;
        const auto due = static_cast<std::time_t>((clock.now() + seconds).unixTime());
        std::tm local{};
        localtime_r(&due, &local);
        NotificationRequest request;
        request.identifier = identifier;
        request.title = "Reminder";
        request.body = identifier;
        request.userInfo["joinURL"] = link;
        request.trigger.year = local.tm_year + 1900;
        request.trigger.month = local.tm_mon + 1;
        request.trigger.day = local.tm_mday;
        request.trigger.hour = local.tm_hour;
        request.trigger.minute = local.tm_min;
        request.trigger.second = local.tm_sec;
        center.add(request);
        center.pending([](const std::vector<NotificationRequest>& pending) {
            std::cout << "pending " << pending.size() << std::endl;
        });
    });
    return QCoreApplication::exec();
}
