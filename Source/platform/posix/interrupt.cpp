// Signals: the handler does no more than note the first and write a byte.

#include "platform/interrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>

#include "platform/events.h"

namespace quon {

namespace {

std::atomic<Interruption> caught = Interruption::NONE;
static_assert(std::atomic<Interruption>::is_always_lock_free);

// The signal's former effect is back when this is called, but comes only behind it.
void note_signal(int signal) {
    const int saved_errno = errno;
    if (caught != Interruption::NONE) raise(signal);
    caught = signal == SIGINT ? Interruption::KEY : Interruption::REQUEST;
    wake_main_thread();
    errno = saved_errno;
}

struct Caught {
    int signal;
    struct sigaction former;
};

Caught signals[] = {{SIGINT, {}}, {SIGTERM, {}}, {SIGHUP, {}}};

}  // namespace

void catch_interrupts() {
    caught = Interruption::NONE;
    struct sigaction action {};
    action.sa_handler = note_signal;
    action.sa_flags = SA_RESTART | int(SA_RESETHAND);
    for (Caught& s : signals) {
        sigaction(s.signal, nullptr, &s.former);
        if (s.former.sa_handler != SIG_IGN) sigaction(s.signal, &action, nullptr);
    }
}

void release_interrupts() {
    for (const Caught& s : signals) sigaction(s.signal, &s.former, nullptr);
}

Interruption interruption() { return caught; }

}  // namespace quon
