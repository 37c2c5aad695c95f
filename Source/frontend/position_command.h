#pragma once
// The "position" command.

#include <string_view>

namespace quon {

// Sets the game position and makes the moves. From the first token on that names no pseudo-legal
// move the rest is dropped, with a message. A text without "startpos" and "fen" changes nothing.
void position_command(std::string_view rest);

}  // namespace quon
