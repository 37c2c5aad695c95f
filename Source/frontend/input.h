#pragma once
// Commands as lines from standard input. Main thread only.

#include <string>
#include <string_view>

namespace quon {

// Reads what standard input holds and takes the next command; false when none is whole yet. Never
// waits for input.
bool next_command(std::string& command);
// The same, and handles the command.
void process_input();

// Takes the next line, for commands that go on over several; waits for it. False at the end of the
// input.
bool next_input_line(std::string& line);

// Reads what standard input holds; true if a command that begins with this word is among those that
// wait, behind whichever others. It stays there, or is taken out. Neither waits for input.
bool command_waits(std::string_view word);
bool withdraw_command(std::string_view word);

// A whole command has been read and waits for process_input.
bool command_pending();
// Standard input is at its end; commands may still be pending.
bool input_ended();

}  // namespace quon
