#pragma once
// The commands of console mode, typed by a person.

#include <string_view>

namespace quon {

// Handles one line that is not empty.
void handle_console_command(std::string_view line);

}  // namespace quon
