#pragma once
// Standard error: messages, and one line that is rewritten in place and gives way to whatever is
// printed. Any thread may call these.

#include <string_view>

namespace quon {

// Shows the text in place of the line before; an empty one removes it.
void show_status_line(std::string_view text);
// Before something is printed elsewhere that may share the terminal.
void erase_status_line();

// A message on a line of its own, without its line end.
void error_line(std::string_view text);

}  // namespace quon
