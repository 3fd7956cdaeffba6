// Preloaded into the program by the test of a month's use: moves every clock of the process forward at a word of the
// test's, tells what the heap holds, and loses things on purpose. What is exchanged lies in a file that both map.

#include <dlfcn.h>
#include <fcntl.h>
#include <jemalloc/jemalloc.h>
#include <poll.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <thread>

namespace {

/// As the test writes it, in units of eight bytes.
struct Exchange {
    std::atomic<std::int64_t> leapt;      ///< nanoseconds by which the clocks are ahead
    std::atomic<std::int64_t> asked;      ///< counted up by the test: look at the heap
    std::atomic<std::int64_t> answered;   ///< follows when that is done
    std::atomic<std::int64_t> heapBytes;  ///< in use, of all arenas
    std::atomic<std::int64_t> wakeUps;    ///< how often the main thread went to sleep
    std::atomic<std::int64_t> bytesToLose;
    std::atomic<std::int64_t> filesToLose;
    std::atomic<std::int64_t> threadsToLose;
    std::atomic<std::int64_t> timerToLose;  ///< milliseconds
};

constexpr std::int64_t second = 1'000'000'000;
// How soon a leap is noticed, in nanoseconds.
constexpr std::int64_t slice = 4'000'000;

Exchange& exchange() {
    static Exchange& shared = []() -> Exchange& {
        const char* path = std::getenv("DAWNLY_LEAP_CLOCK");
        const int file = path == nullptr ? -1 : open(path, O_RDWR | O_CLOEXEC);
        void* memory =
            file < 0 ? MAP_FAILED : mmap(nullptr, sizeof(Exchange), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (memory == MAP_FAILED) std::abort();
        close(file);
        return *static_cast<Exchange*>(memory);
    }();
    return shared;
}

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::int64_t toNanoseconds(const timespec& time) {
    return time.tv_sec * second + time.tv_nsec;
}

timespec toTimespec(std::int64_t nanoseconds) {
    return {nanoseconds / second, nanoseconds % second};
}

bool isOfTheProcessor(clockid_t clock) {
    return clock == CLOCK_PROCESS_CPUTIME_ID || clock == CLOCK_THREAD_CPUTIME_ID || clock < 0;
}

std::size_t heapInUse() {
    std::uint64_t epoch = 1;
    mallctl("epoch", nullptr, nullptr, &epoch, sizeof epoch);
    std::size_t bytes = 0;
    std::size_t size = sizeof bytes;
    mallctl("stats.allocated", &bytes, &size, nullptr, 0);
    return bytes;
}

/// Runs on the main thread, between two of its events.
void serve() {
    Exchange& with = exchange();
    // Reachable, so that only counting finds them, as with most leaks of a program that keeps what it should give up.
    static void* lost = nullptr;
    if (const auto bytes = with.bytesToLose.exchange(0); bytes > 0) {
        auto* block = static_cast<void**>(std::calloc(1, static_cast<std::size_t>(bytes)));
        *block = lost;
        lost = block;
    }
    for (auto files = with.filesToLose.exchange(0); files > 0; --files) {
        [[maybe_unused]] const int file = open("/dev/null", O_RDONLY | O_CLOEXEC);
    }
    for (auto threads = with.threadsToLose.exchange(0); threads > 0; --threads)
        std::thread([] { pause(); }).detach();
    if (const auto asked = with.asked.load(); asked != with.answered) {
        with.heapBytes = static_cast<std::int64_t>(heapInUse());
        with.answered = asked;
    }
}

/// Waits as the caller asked, by the clock that leaps. `timeout` is in nanoseconds, below 0 for ever.
int sleepOnMain(pollfd* files, nfds_t count, std::int64_t timeout, const sigset_t* signals) {
    static auto* const real = next<int(pollfd*, nfds_t, const timespec*, const sigset_t*)>("ppoll");
    Exchange& with = exchange();
    ++with.wakeUps;
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const std::int64_t end = toNanoseconds(now) + timeout;
    // What the program would be woken by if it had lost a timer.
    const std::int64_t tick = with.timerToLose * 1'000'000;
    const std::int64_t ticked = tick > 0 ? toNanoseconds(now) + tick : INT64_MAX;
    while (true) {
        serve();
        const std::int64_t left = timeout < 0 ? INT64_MAX : std::max<std::int64_t>(end - toNanoseconds(now), 0);
        const timespec wait = toTimespec(std::min(left, slice));
        if (const int ready = real(files, count, &wait, signals); ready != 0) return ready;
        clock_gettime(CLOCK_MONOTONIC, &now);
        if ((timeout >= 0 && toNanoseconds(now) >= end) || toNanoseconds(now) >= ticked) return 0;
    }
}

bool isMainThread() {
    return gettid() == getpid();
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    static auto* const real = next<int(clockid_t, timespec*)>("clock_gettime");
    const int result = real(clock, time);
    if (result == 0 && !isOfTheProcessor(clock)) *time = toTimespec(toNanoseconds(*time) + exchange().leapt);
    return result;
}

int gettimeofday(timeval* __restrict time, void* __restrict) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1000};
    return 0;
}

std::time_t time(std::time_t* result) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (result != nullptr) *result = now.tv_sec;
    return now.tv_sec;
}

int poll(pollfd* files, nfds_t count, int timeout) {
    static auto* const real = next<int(pollfd*, nfds_t, int)>("poll");
    if (timeout == 0 || !isMainThread()) return real(files, count, timeout);
    return sleepOnMain(files, count, timeout < 0 ? -1 : timeout * std::int64_t{1'000'000}, nullptr);
}

int ppoll(pollfd* files, nfds_t count, const timespec* timeout, const sigset_t* signals) {
    static auto* const real = next<int(pollfd*, nfds_t, const timespec*, const sigset_t*)>("ppoll");
    if (!isMainThread()) return real(files, count, timeout, signals);
    return sleepOnMain(files, count, timeout == nullptr ? -1 : toNanoseconds(*timeout), signals);
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const timespec* until) {
    static auto* const real =
        next<int(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*)>("pthread_cond_clockwait");
    timespec now{};
    clock_gettime(clock, &now);
    const std::int64_t leapt = exchange().leapt;
    const std::int64_t sliceEnd = toNanoseconds(now) + slice;
    const timespec end = toTimespec(std::min(toNanoseconds(*until), sliceEnd) - leapt);
    const int result = real(condition, mutex, clock, &end);
    // Woken early for nothing, as every waiter must expect: the clock may have leapt.
    return result == ETIMEDOUT && sliceEnd < toNanoseconds(*until) ? 0 : result;
}

int pthread_cond_timedwait(pthread_cond_t* __restrict condition, pthread_mutex_t* __restrict mutex,
                           const timespec* __restrict until) {
    // The condition knows its clock and does not tell; the two are decades apart.
    constexpr std::time_t longestUptime = 1'000'000'000;
    return pthread_cond_clockwait(condition, mutex, until->tv_sec < longestUptime ? CLOCK_MONOTONIC : CLOCK_REALTIME,
                                  until);
}

}  // extern "C"
