#pragma once
// Whether a person watches an output.

namespace quon {

bool output_is_terminal();
bool error_output_is_terminal();

}  // namespace quon
