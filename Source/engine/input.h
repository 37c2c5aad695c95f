#pragma once
// Commands as lines from standard input. Main thread only, but for the two tests of leaving: a line
// of output that waits for its reader asks them, whichever thread prints it.

#include <string>
#include <string_view>

namespace quon {

struct Engine;

// Reads what standard input holds and takes the next command; false when none is whole yet. Never
// waits for input.
bool next_command(Engine& engine, std::string& command);

// The same without taking it.
bool peek_command(std::string& command);

// Takes the next line, for commands that go on over several; waits for it. False at the end of the
// input, and after an interruption.
bool next_input_line(Engine& engine, std::string& line);

// Reads what standard input holds, as far as lines are read ahead; true if that is the end. Does
// not wait for input.
bool input_at_end();
// The length of the commands that have been read and wait.
std::size_t waiting_length();
// True if a command that begins with this word is among those that wait, behind a waiting_length of
// before. It stays there, or is taken out.
bool command_waits(std::string_view word, std::size_t behind);
bool withdraw_command(std::string_view word, std::size_t behind);

// Both read what standard input holds, and keep it: "quit" has been handled or waits, behind
// whichever other commands; or else the input is at its end.
bool quit_comes();
bool quit_or_end_comes();

// A whole command has been read and waits to be taken.
bool command_pending();
// Standard input is at its end; commands may still be pending.
bool input_ended();

}  // namespace quon
