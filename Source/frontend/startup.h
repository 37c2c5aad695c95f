#pragma once
// The process from its first to its last moment.

#include <string>
#include <vector>

namespace quon {

// Starts the engine, does what the words of the command line ask for, and shuts it down. Returns
// the exit status: 0 after a normal end, 1 when the start fails or a tool cannot write its output.
int run_program(const std::vector<std::string>& words);

}  // namespace quon
