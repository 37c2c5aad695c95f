// The system's clocks and sleep.

#include "platform/clock.h"

#include <cerrno>
#include <ctime>

namespace quon {

namespace {

std::timespec read_clock(clockid_t clock) {
    std::timespec time{};
    clock_gettime(clock, &time);
    return time;
}

}  // namespace

double monotonic_seconds() {
    const std::timespec time = read_clock(CLOCK_MONOTONIC);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

std::int64_t wall_clock_ms() {
    const std::timespec time = read_clock(CLOCK_REALTIME);
    return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1000000;
}

void sleep_ms(int ms) {
    std::timespec left{ms / 1000, (ms % 1000) * 1000000L};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

TimerStatus request_timer_period(std::uint32_t, std::uint32_t& period_ms) {
    period_ms = 0;
    return TimerStatus::NOT_NEEDED;
}

void release_timer_period(std::uint32_t) {}

}  // namespace quon
