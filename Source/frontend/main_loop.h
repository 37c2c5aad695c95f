#pragma once
// The protocol loop.

namespace quon {

struct Engine;

// Handles commands, starts and watches searches and reports them, until "quit", the end of the
// input, or the loss of the output.
void main_loop(Engine& engine);

}  // namespace quon
