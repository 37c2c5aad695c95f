#pragma once
// The protocol loop.

namespace quon {

struct Engine;

// Handles one command of standard input, if a whole one has come; in UCI or as the console,
// whichever mode is on.
void process_input(Engine& engine);

// Handles commands, starts and watches searches and reports them, until "quit", the end of the
// input, or the loss of the output.
void main_loop(Engine& engine);

}  // namespace quon
