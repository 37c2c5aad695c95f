// The status line: rewritten in place, removed at the end.

#include "support/progress.h"

#include <string>

#include "platform/clock.h"
#include "platform/terminal.h"
#include "support/format.h"
#include "support/status_line.h"

namespace quon {

namespace {

constexpr double PERIOD = 0.2;  // seconds between two writings

}  // namespace

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
        const int left = int(progress_seconds(progress) * (total - done) / done + 0.5);
        line += format(", %.0f %%, %d:%02d left", 100 * done / total, left / 60, left % 60);
    }
    show_status_line(line);
    progress.shown_at = monotonic_seconds();
}

void end_progress() { show_status_line(""); }

}  // namespace quon
