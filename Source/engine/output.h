#pragma once
// The single way out: lines to standard output, copied to the log file. Any thread may call these;
// each line is written whole. Belongs to the process, like the streams behind it.

#include <string>
#include <string_view>

namespace quon {

// Writes the text and a newline to standard output, waiting for a slow reader; copies them to the
// log file when logging is on and the file is open.
void engine_print(std::string_view text);

// The text as it stands, to standard output alone: what never goes to the log.
void print_unlogged(std::string_view text);

// A command of a front end; while logging is on it is printed as well, so that a log tells what
// answers what.
void print_command(std::string_view line);

// The line to the log file alone, under the same two conditions.
void log_line(std::string_view text);

// Whether lines are copied to the log file; they are unless it is switched off.
void set_log_enabled(bool enabled);
bool log_enabled();

// Starts "quon.log" in the working directory afresh and keeps it open; prints "log file in use."
// and goes on without one when an old file cannot be deleted.
void open_log_file();
void close_log_file();

// The test says whether the program is to end. While it does, output is lost that nobody reads for
// half a second; without it a reader is waited for without limit. Called by any thread, under the
// lock of the output: it must neither print nor wait.
void leave_output_if(bool (*test)());

// True once standard output cannot be written, as its reader is gone, or has been given up.
bool output_lost();

}  // namespace quon
