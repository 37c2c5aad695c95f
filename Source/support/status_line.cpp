// Standard error: messages and the status line.

#include "support/status_line.h"

#include <cmath>
#include <cstdio>
#include <mutex>
#include <string>

#include "platform/clock.h"
#include "platform/standard_output.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr double PERIOD = 0.2;  // seconds between two writings of a status line
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

Progress start_progress() { return {monotonic_seconds(), 0, error_output_is_terminal()}; }

double progress_seconds(const Progress& progress) {
    return monotonic_seconds() - progress.start_time;
}

bool progress_due(const Progress& progress) {
    return progress.wanted && monotonic_seconds() - progress.shown_at >= PERIOD;
}

void show_progress(Progress& progress, std::string_view text, double done, double total) {
    if (!progress_due(progress)) return;
    std::string line(text);
    if (total > 0 && done > 0) {
        const auto left = int(std::lround(progress_seconds(progress) * (total - done) / done));
        line += format(", %.0f %%, %d:%02d left", 100 * done / total, left / 60, left % 60);
    }
    show_status_line(line);
    progress.shown_at = monotonic_seconds();
}

void end_progress() { show_status_line(""); }

}  // namespace quon
