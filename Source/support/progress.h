#pragma once
// The status line of long work, on standard error while that is a terminal; nothing otherwise.

#include <string_view>

namespace quon {

struct Progress {
    double start_time;  // monotonic seconds
    double shown_at;    // when the line was written last
    bool wanted;        // a person watches
};

Progress start_progress();
double progress_seconds(const Progress& progress);
// True when show_progress would rewrite the line now: for callers whose text is costly.
bool progress_due(const Progress& progress);
// Writes the text, and the share of the whole and the time left when total is above 0; done and
// total are in any one unit. At most five times a second, however often it is called.
void show_progress(Progress& progress, std::string_view text, double done, double total);
// Removes the line.
void end_progress();

}  // namespace quon
