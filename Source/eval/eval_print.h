#pragma once
// The evaluation tables as text, for the console.

namespace quon {

// Prints the master tables to standard output.
void print_eval_tables();

}  // namespace quon
