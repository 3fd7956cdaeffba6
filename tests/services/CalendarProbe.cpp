#include <QCoreApplication>
#include <QSocketNotifier>
#include <chrono>
#include <iostream>
#include <string>

#include "base/Dates.h"
#include "linux/calendar/DesktopCalendarStore.h"
#include "linux/calendar/eds/EdsModule.h"
#include "linux/desktop/QtRunLoop.h"
#include "linux/system/InotifyFolderEvents.h"
#include "linux/system/JsonUserDefaults.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/SystemClock.h"
#include "linux/system/ThreadWorkQueue.h"
#include "linux/system/XdgPaths.h"

// Prints the events of the next two weeks whenever the calendars change, and adds an event, an hour from now and an
// hour long, for each line of input. Tells how long the main thread was kept from its work.
int main(int argc, char* argv[]) {
    using namespace sunpane;
    const QCoreApplication application(argc, argv);
    const SystemClock clock;
    QtRunLoop runLoop;
    ThreadWorkQueueFactory queues;
    InotifyFolderEvents folderEvents;
    PosixFileSystem files;
    JsonUserDefaults defaults(JsonUserDefaults::defaultPath());
    DesktopCalendarStore store({clock, runLoop, queues, folderEvents, files, defaults, xdg::dataFolder() + "/calendars",
                                nullptr, edsCalendars(), CalendarAccess::full});
    const auto print = [&] {
        const Instant now = clock.now();
        for (const auto& calendar : store.calendars())
            std::cout << "calendar " << calendar.title << (calendar.birthdays ? " birthdays" : "") << '\n';
        for (const auto& event : store.events(now, now + 14 * 86400.0)) {
            std::cout << "event " << iso8601Utc(*event.start) << ' ' << event.title.value_or("-") << " ["
                      << event.calendar->title << "] " << event.identifier << '\n';
        }
        std::cout << "done" << std::endl;
    };
    const Subscription changes = store.observeChanges(print);

    using SteadyClock = std::chrono::steady_clock;
    auto lastTurn = SteadyClock::now();
    auto longestWait = SteadyClock::duration::zero();
    const Subscription turns = runLoop.every(0.02, [&] {
        longestWait = std::max(longestWait, SteadyClock::now() - lastTurn);
        lastTurn = SteadyClock::now();
    });
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        std::string title;
        if (!std::getline(std::cin, title)) {
            std::cout << "waited " << std::chrono::duration_cast<std::chrono::milliseconds>(longestWait).count()
                      << std::endl;
            return QCoreApplication::quit();
        }
        const Instant start = clock.now() + 3600;
        store.add({title, start, start + 3600}, [](const std::optional<std::string>& identifier) {
            std::cout << "added " << identifier.value_or("nothing") << std::endl;
        });
    });
    return QCoreApplication::exec();
}
