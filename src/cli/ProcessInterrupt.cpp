#include "cli/ProcessInterrupt.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace sunpane::cli {

ProcessInterrupt::~ProcessInterrupt() {
    if (signals_ >= 0) close(signals_);
}

void ProcessInterrupt::arm() {
    sigset_t mask;
    sigemptyset(&mask);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&mask, number);
    // Threads inherit the mask, so the signals reach nobody but the descriptor.
    pthread_sigmask(SIG_BLOCK, &mask, nullptr);
    signals_ = signalfd(-1, &mask, SFD_CLOEXEC);
}

void ProcessInterrupt::wait() {
    if (signals_ < 0) return;
    // No event is asked for on the output; poll reports its closing all the same.
    std::array<pollfd, 2> descriptors{pollfd{signals_, POLLIN, 0}, pollfd{STDOUT_FILENO, 0, 0}};
    while (poll(descriptors.data(), descriptors.size(), -1) < 0 && errno == EINTR) {
    }
}

}  // namespace sunpane::cli
