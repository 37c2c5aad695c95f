// Standard error.

#include "support/status_line.h"

#include <cstdio>
#include <mutex>

namespace quon {

namespace {

constexpr char REWRITE_LINE[] = "\r\x1b[K";

std::mutex mutex;  // guards the stream
bool shown = false;

void erase() {
    if (shown) std::fputs(REWRITE_LINE, stderr);
    shown = false;
}

}  // namespace

void show_status_line(std::string_view text) {
    const std::lock_guard lock(mutex);
    erase();
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
    shown = !text.empty();
}

void erase_status_line() { show_status_line(""); }

void error_line(std::string_view text) {
    const std::lock_guard lock(mutex);
    erase();
    std::fprintf(stderr, "%.*s\n", int(text.size()), text.data());
}

}  // namespace quon
