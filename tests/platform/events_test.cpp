#include "platform/events.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/clock.h"

namespace quon::test {
namespace {

TEST(Events, ACallEndsOneWait) {
    init_events();
    // A call before the wait is not lost; many calls are one.
    for (int i = 0; i < 100000; ++i) wake_main_thread();
    wait_for_event(-1, false);
    for (int calls = 0; calls < 3000; ++calls) wait_for_event(0, false);
    const double start = monotonic_seconds();
    wait_for_event(30, false);
    EXPECT_GE(monotonic_seconds() - start, 0.029);

    std::thread caller([] {
        sleep_ms(20);
        wake_main_thread();
    });
    wait_for_event(-1, false);
    caller.join();
}

}  // namespace
}  // namespace quon::test
