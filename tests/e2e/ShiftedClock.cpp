// Preloaded into a program, which then sees the wall clock DAWNLY_CLOCK_AHEAD seconds ahead. Timers and file times stay
// true. Of our own, because libfaketime and an allocator that looks at the clock wait for each other at the start.

#include <dlfcn.h>
#include <sys/time.h>

#include <cstdlib>
#include <ctime>

namespace {

std::time_t secondsAhead() {
    static const std::time_t ahead = [] {
        const char* seconds = std::getenv("DAWNLY_CLOCK_AHEAD");
        return seconds == nullptr ? 0 : std::strtol(seconds, nullptr, 10);
    }();
    return ahead;
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    static auto* const real = reinterpret_cast<int (*)(clockid_t, timespec*)>(dlsym(RTLD_NEXT, "clock_gettime"));
    const int result = real(clock, time);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)) time->tv_sec += secondsAhead();
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

}  // extern "C"
