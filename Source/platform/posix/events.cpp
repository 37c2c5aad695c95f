// Standard input and waking by poll(). Pipes, files, terminals, the null device and a closed input
// all look the same: ready, then some bytes or the end.

#include "platform/events.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace quon {

namespace {

constexpr std::size_t READ_SIZE = 4096;

// A wake-up is a byte in a pipe to oneself: it ends a poll() under way as well as the next one.
int wake_read = -1;
int wake_write = -1;

// A descriptor that was closed before the start would be given to the next file opened. It is bound
// to the null device in the direction that fails, so that it goes on looking closed.
void reserve_standard_descriptors() {
    constexpr int modes[] = {O_WRONLY, O_RDONLY, O_RDONLY};
    for (int descriptor = 0; descriptor < 3; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) == -1) open("/dev/null", modes[descriptor]);
    }
}

void make_private(int descriptor) {
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    fcntl(descriptor, F_SETFL, O_NONBLOCK);
}

}  // namespace

void init_events() {
    reserve_standard_descriptors();
    std::signal(SIGPIPE, SIG_IGN);
    int ends[2];
    if (pipe(ends) != 0) return;
    wake_read = ends[0];
    wake_write = ends[1];
    make_private(wake_read);
    make_private(wake_write);
}

InputState read_input(std::string& bytes) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, 0) <= 0) return InputState::OPEN;
    char buffer[READ_SIZE];
    const ssize_t count = read(STDIN_FILENO, buffer, sizeof buffer);
    if (count > 0) {
        bytes.append(buffer, std::size_t(count));
        return InputState::OPEN;
    }
    const bool later = count < 0 && (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK);
    return later ? InputState::OPEN : InputState::ENDED;
}

bool input_is_terminal() { return isatty(STDIN_FILENO) == 1; }

bool is_standard_input(const std::string& path) {
    struct stat input {};
    struct stat file {};
    return fstat(STDIN_FILENO, &input) == 0 && stat(path.c_str(), &file) == 0 &&
           input.st_dev == file.st_dev && input.st_ino == file.st_ino;
}

void wait_for_event(int timeout_ms, bool watch_input) {
    // Without a pipe to oneself nothing can call: look again soon.
    constexpr int BLIND_MS = 5;
    if (wake_read < 0 && (timeout_ms < 0 || timeout_ms > BLIND_MS)) timeout_ms = BLIND_MS;
    pollfd watched[] = {{wake_read, POLLIN, 0}, {watch_input ? STDIN_FILENO : -1, POLLIN, 0}};
    if (poll(watched, 2, timeout_ms) <= 0 || watched[0].revents == 0) return;
    char calls[64];
    while (read(wake_read, calls, sizeof calls) == ssize_t(sizeof calls)) {
    }
}

void wake_main_thread() {
    // A full pipe holds a call already.
    [[maybe_unused]] const ssize_t written = write(wake_write, "", 1);
}

}  // namespace quon
