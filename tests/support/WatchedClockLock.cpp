// The thread sanitizer of g++ 12 knows every lock of a mutex but the one with a
// clock of the caller's choice, by which std::timed_mutex waits. It would see
// an unlock without a lock, and races wherever such a lock protects something.
// This one waits by a lock that it knows.

#include <cstdint>
#include <ctime>

#include <pthread.h>

namespace {

constexpr std::int64_t nanosecondsOfASecond = 1'000'000'000;

std::int64_t nanoseconds(const timespec& time) {
    return time.tv_sec * nanosecondsOfASecond + time.tv_nsec;
}

std::int64_t now(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return nanoseconds(time);
}

}  // namespace

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int pthread_mutex_clocklock(pthread_mutex_t* mutex, clockid_t clock,
                                       const timespec* until) noexcept {
    const std::int64_t end =
        now(CLOCK_REALTIME) + nanoseconds(*until) - now(clock);
    const timespec limit{end / nanosecondsOfASecond,
                         end % nanosecondsOfASecond};
    return ::pthread_mutex_timedlock(mutex, &limit);
}
