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

void set_handler(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART | int(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM}) sigaction(signal, &action, nullptr);
}

}  // namespace

void catch_interrupts() {
    caught = false;
    set_handler(note_signal);
}

void release_interrupts() { set_handler(SIG_DFL); }

bool interrupted() { return caught; }

}  // namespace quon
