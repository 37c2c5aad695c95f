#pragma once
// The commands of console mode, typed by a person.

#include <string_view>

namespace quon {

struct Engine;

// Handles one line that is not empty.
void handle_console_command(Engine& engine, std::string_view line);

}  // namespace quon
