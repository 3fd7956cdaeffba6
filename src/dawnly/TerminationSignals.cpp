#include "dawnly/TerminationSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>

namespace sunpane {
namespace {

int pipeEnds[2] = {-1, -1};

// In a signal handler little more than write(2) is safe; the event loop reads the other end.
void announce(int /*signal*/) {
    const char byte = 0;
    [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, 1);
}

}  // namespace

void quitOnTerminationSignals() {
    if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) return;
    auto* notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, qApp);  // owned by the application
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
    std::signal(SIGTERM, announce);
    for (const int signal : {SIGINT, SIGHUP}) {
        // Whoever started it with nohup, or behind the "&" of a script, wants it to outlive the terminal.
        struct sigaction current {};
        if (sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_IGN) continue;
        std::signal(signal, announce);
    }
}

}  // namespace sunpane
