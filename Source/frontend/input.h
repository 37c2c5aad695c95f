#pragma once
// Commands as lines from standard input. Main thread only.

namespace quon {

// Reads what standard input holds and handles at most one command; never waits for input.
void process_input();

// A whole command has been read and waits for process_input.
bool command_pending();
// Standard input is at its end; commands may still be pending.
bool input_ended();

}  // namespace quon
