#pragma once
// Standard error: messages, and one line that is rewritten in place and gives way to whatever is
// printed. Any thread may call these.

#include <string_view>

namespace quon {

// Shows the text in place of the line before; an empty one removes it.
void show_status_line(std::string_view text);
// Before something is printed elsewhere that may share the terminal.
void erase_status_line();

// A message on a line of its own, without its line end.
void error_line(std::string_view text);

// The status line of long work, shown while standard error is a terminal; nothing otherwise.
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
