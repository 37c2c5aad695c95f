#pragma once
// The "go" command.

#include <string_view>

namespace quon {

struct Engine;

// Aborts a running search, sets `limits` from the keywords in the text, and asks the main loop for
// a search. What no keyword mentions stays as it was.
void go_command(Engine& engine, std::string_view rest);

}  // namespace quon
