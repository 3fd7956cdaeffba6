#include "linux/system/SingleInstance.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): SIGKILL and siginfo_t
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <optional>
#include <sstream>
#include <tuple>

#include "base/AppIdentity.h"
#include "base/FileDescriptor.h"
#include "linux/system/XdgPaths.h"

namespace sunpane {
namespace {

using SteadyClock = std::chrono::steady_clock;

// After a copy was seen to end, its lock is free within moments.
constexpr int retryMilliseconds = 10;

bool lock(int file) {
    struct flock wish {};
    wish.l_type = F_WRLCK;
    wish.l_whence = SEEK_SET;
    return fcntl(file, F_SETLK, &wish) == 0;
}

/// The process that holds the lock; 0 when nobody does, or nobody whom this process can see.
pid_t holder(int file) {
    struct flock found {};
    found.l_type = F_WRLCK;
    found.l_whence = SEEK_SET;
    if (fcntl(file, F_GETLK, &found) != 0 || found.l_type == F_UNLCK || found.l_pid < 0) return 0;
    return found.l_pid;
}

/// When a process was started, in ticks since the machine was.
std::optional<unsigned long long> startTime(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    if (!std::getline(file, line)) return std::nullopt;
    // The second field is the program's name, which may hold anything; the start time is the 22nd.
    const auto afterName = line.rfind(')');
    if (afterName == std::string::npos) return std::nullopt;
    std::istringstream fields(line.substr(afterName + 1));
    std::string skipped;
    for (int field = 3; field < 22; ++field)
        fields >> skipped;
    unsigned long long ticks = 0;
    if (!(fields >> ticks)) return std::nullopt;
    return ticks;
}

bool isNewer(pid_t process) {
    const auto other = startTime(process);
    const auto own = startTime(getpid());
    return other && own && std::tuple(*other, process) > std::tuple(*own, getpid());
}

bool send(int process, int signal) {
    return syscall(SYS_pidfd_send_signal, process, signal, nullptr, 0) == 0;
}

bool waitForEnd(int process, Seconds seconds) {
    const auto end =
        SteadyClock::now() + std::chrono::duration_cast<SteadyClock::duration>(std::chrono::duration<double>(seconds));
    pollfd ended{process, POLLIN, 0};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - SteadyClock::now()).count();
        if (left <= 0) return false;
        const int found = poll(&ended, 1, static_cast<int>(left));
        if (found > 0) return true;
        if (found < 0 && errno != EINTR) return false;
    }
}

int openLockFile(const std::string& path) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    struct stat info {};
    // Without a runtime folder the file lies where others can put theirs.
    if (file >= 0 && (fstat(file, &info) != 0 || !S_ISREG(info.st_mode) || info.st_uid != getuid())) {
        close(file);
        return -1;
    }
    return file;
}

}  // namespace

SingleInstance::~SingleInstance() {
    if (file_ >= 0) close(file_);
}

std::string SingleInstance::defaultPath() {
    return xdg::runtimeFolder() + "/" + std::string(appIdentifier) + ".lock";
}

SingleInstance::Outcome SingleInstance::replaceOther(Seconds grace) {
    if (file_ < 0) file_ = openLockFile(path_);
    if (file_ < 0) return Outcome::unknown;
    const auto end = SteadyClock::now() +
                     std::chrono::duration_cast<SteadyClock::duration>(std::chrono::duration<double>(grace + killTime));
    while (!lock(file_)) {
        if (SteadyClock::now() > end) return Outcome::outOfReach;
        const pid_t other = holder(file_);
        if (other > 0 && isNewer(other)) return Outcome::newerRuns;
        const FileDescriptor process(other > 0 ? static_cast<int>(syscall(SYS_pidfd_open, other, 0)) : -1);
        // Only when it holds the lock after it was taken by the hand, that hand holds the right one: a number that
        // became free may be another process's by now.
        if (!process.isOpen() || holder(file_) != other) {
            poll(nullptr, 0, retryMilliseconds);
            continue;
        }
        if (!send(process.get(), SIGTERM) && errno == EPERM) return Outcome::outOfReach;
        if (!waitForEnd(process.get(), grace)) {
            send(process.get(), SIGKILL);
            waitForEnd(process.get(), killTime);
        }
    }
    return Outcome::alone;
}

}  // namespace sunpane
