#pragma once
// The protocol loop.

namespace quon {

// Handles commands, starts and watches searches and reports them, until "quit", the end of the
// input, or the loss of the output.
void main_loop();

}  // namespace quon
