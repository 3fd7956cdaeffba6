#include <QCoreApplication>
#include <QSocketNotifier>
#include <iostream>
#include <string>

#include "linux/desktop/DesktopNotificationService.h"

// Shows a notification for each line of input, "title<tab>body", and prints a line for everything that happens.
int main(int argc, char* argv[]) {
    using sunpane::DesktopNotificationService;
    const QCoreApplication application(argc, argv);
    DesktopNotificationService service;
    const auto tellAvailability = [&] {
        std::cout << (service.available() ? "available" : "unavailable") << " "
                  << (service.instance().empty() ? "idle" : "running") << std::endl;
    };
    service.setAvailabilityHandler(tellAvailability);
    service.setClickHandler([](std::uint32_t number) { std::cout << "clicked " << number << std::endl; });
    tellAvailability();

    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        std::string line;
        if (!std::getline(std::cin, line)) return QCoreApplication::quit();
        const auto tab = line.find('\t');
        service.show(line.substr(0, tab), line.substr(tab + 1),
                     [](std::uint32_t number) { std::cout << "shown " << number << std::endl; });
    });
    return QCoreApplication::exec();
}
