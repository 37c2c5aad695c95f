#pragma once
// The "position" command.

#include <string_view>

namespace quon {

struct Engine;

// Sets the game position and makes the moves. From the first token on that names no pseudo-legal
// move the rest is dropped, with a message. A text without "startpos" and "fen" changes nothing.
void position_command(Engine& engine, std::string_view rest);

}  // namespace quon
