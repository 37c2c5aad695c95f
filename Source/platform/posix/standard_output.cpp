// Standard output by write() and poll(). Whether it blocks is a property that other processes may
// share: it is never changed. A pipe or terminal is opened a second time without blocking instead.

#include "platform/standard_output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace quon {

namespace {

// A blocking pipe that poll() calls writable has room for this much.
constexpr std::size_t CHUNK = 4096;

enum class Kind { FILE, PIPE, DEVICE, SOCKET };

int output = STDOUT_FILENO;
Kind kind = Kind::PIPE;
bool may_block = true;

Kind kind_of(mode_t mode) {
    if (S_ISFIFO(mode)) return Kind::PIPE;
    if (S_ISCHR(mode)) return Kind::DEVICE;
    return S_ISSOCK(mode) ? Kind::SOCKET : Kind::FILE;
}

bool has_room(int timeout_ms) {
    pollfd room{output, POLLOUT, 0};
    return poll(&room, 1, timeout_ms) != 0;
}

ssize_t write_some(std::string_view text) {
    const std::size_t size = std::min(text.size(), CHUNK);
    if (kind == Kind::SOCKET) return send(output, text.data(), size, MSG_DONTWAIT);
    if (may_block && !has_room(0)) {
        errno = EAGAIN;
        return -1;
    }
    return write(output, text.data(), size);
}

}  // namespace

void init_output() {
    struct stat status {};
    const int flags = fcntl(STDOUT_FILENO, F_GETFL);
    if (flags == -1 || fstat(STDOUT_FILENO, &status) != 0) return;
    kind = kind_of(status.st_mode);
    may_block = kind == Kind::PIPE || kind == Kind::DEVICE;
    if (!may_block || (flags & O_ACCMODE) == O_RDONLY) return;
    const int own = open("/proc/self/fd/1", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (own < 0) return;
    output = own;
    may_block = false;
}

OutputState offer_output(std::string_view& text) {
    while (!text.empty()) {
        const ssize_t count = write_some(text);
        if (count > 0) {
            text.remove_prefix(std::size_t(count));
        } else if (count == 0 || errno == EAGAIN || errno == EWOULDBLOCK) {
            return OutputState::OPEN;
        } else if (errno != EINTR) {
            return OutputState::LOST;
        }
    }
    return OutputState::OPEN;
}

void wait_for_room(int timeout_ms) { has_room(timeout_ms); }

int unread_output() {
    int count = 0;
    return ioctl(output, kind == Kind::PIPE ? FIONREAD : TIOCOUTQ, &count) == 0 ? count : 0;
}

bool output_is_terminal() { return isatty(STDOUT_FILENO) == 1; }
bool error_output_is_terminal() { return isatty(STDERR_FILENO) == 1; }

}  // namespace quon
