#pragma once
// What running work hears on standard input and from the system: that it is to end. "isready" is
// answered; everything else is passed over, so that nobody changes the game or the settings under
// it. Main thread only.

#include <string>

#include "support/line_reader.h"

namespace quon {

struct Engine;

// Opens the file that a tool reads, on the command line also standard input by its name
// ("/dev/stdin"); false if that is not possible.
bool open_tool_file(LineReader& reader, const std::string& path, std::size_t limit,
                    LongLine long_line = LongLine::AT_LIMIT);
// False, and said on standard error, if there is no such file to read. Nothing is taken from it.
bool can_be_read(const std::string& path);
// False, and said on standard error, after a read error.
bool read_well(const LineReader& reader, const std::string& path);
void report_unreadable_file(const std::string& path);

// At the start of a tool. An input that is at its end already, such as the null device, does not
// end the tool. `file` is the file that the tool reads, if it reads one: if that is standard input
// no commands are taken from there.
void start_tool_input(Engine& engine, const std::string& file = {});

// At the start of a console command. "stop" and "." end it, and so does "quit", which stays on the
// input like all other lines: the console handles them in their order afterwards. The end of the
// input ends it too. What is there already when the command begins counts for nothing, so that
// commands can be sent in one go.
void start_command_input();
// Behind it: lines that wait already count as well.
void heed_waiting_lines();

// At the end of both, so that Ctrl-C ends the process again. When the system asked a console
// command to end the program is to end: quit_requested is set.
void end_tool_input(Engine& engine);

// True once the work is to end: after "quit", "stop", Ctrl-C, a request of the system, the end of
// an input that was open at the start, or when nobody reads standard output any more. Then the stop
// flag is set as well, so that a running search breaks off. Looks without waiting, and so rarely
// that it can be asked at every step; or sleeps first, for at most wait_ms or until something
// arrives or a search thread is done.
bool end_wished(Engine& engine, int wait_ms = 0);

// The opposite, for those who take it as a question.
inline bool keep_on(Engine& engine, int wait_ms = 0) { return !end_wished(engine, wait_ms); }

}  // namespace quon
