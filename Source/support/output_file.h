#pragma once
// Files that a tool or a command writes: what a person is told about them.

#include <string>

#include "support/file.h"

namespace quon {

// True, and said on standard error, if a tool would overwrite the file that it reads.
[[nodiscard]] bool overwrites_input(const std::string& input, const std::string& output);
// False, and said on standard error, if anything could not be written.
[[nodiscard]] bool close_output(File& output);
// The words for such a file.
void report_incomplete(const std::string& path);

}  // namespace quon
