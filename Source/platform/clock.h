#pragma once
// Time: a monotonic clock, the wall clock, sleeping, and the resolution of sleeps.

#include <cstdint>

namespace quon {

double monotonic_seconds();
std::int64_t wall_clock_ms();
void sleep_ms(int ms);

enum class TimerStatus { NOT_NEEDED, SET, NO_CAPABILITIES, REFUSED };
// Asks for sleeps as fine as wanted_ms, within what the device can do; `period_ms` receives the
// period to release later. NOT_NEEDED, with period 0, where the system has no such setting.
TimerStatus request_timer_period(std::uint32_t wanted_ms, std::uint32_t& period_ms);
void release_timer_period(std::uint32_t period_ms);

}  // namespace quon
