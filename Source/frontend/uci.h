#pragma once
// The UCI commands.

#include <string_view>

namespace quon {

struct Engine;

// Handles one line of UCI; a command that is not known is ignored.
void handle_uci_command(Engine& engine, std::string_view line);

// The line that names the engine.
void print_name();

}  // namespace quon
