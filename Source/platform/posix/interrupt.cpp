// Signals: the handler does no more than set a flag and write a byte.

#include "platform/interrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>

#include "platform/events.h"

namespace quon {

namespace {

std::atomic<bool> caught = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void note_signal(int) {
    const int saved_errno = errno;
    caught = true;
    wake_main_thread();
    errno = saved_errno;
}

struct Caught {
    int signal;
    struct sigaction former;
};

Caught signals[] = {{SIGINT, {}}, {SIGTERM, {}}};

}  // namespace

void catch_interrupts() {
    caught = false;
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

bool interrupted() { return caught; }

}  // namespace quon
