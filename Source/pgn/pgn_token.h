#pragma once
// The words of PGN move text.

#include <string>
#include <string_view>

namespace quon {

// Takes the next token off the front of the line; false at its end. Blanks separate; a parenthesis
// or brace is a token of its own; control characters are left out.
bool next_pgn_token(std::string_view& rest, std::string& token);

}  // namespace quon
