#pragma once
// The UCI commands.

#include <string_view>

namespace quon {

struct Engine;

// Handles one line of UCI; a command that is not known is ignored.
void handle_uci_command(Engine& engine, std::string_view line);

// True for what a running search does not notice.
bool leaves_search_alone(std::string_view line);

// go_command.cpp

// Aborts a running search, sets `limits` from the keywords in the text, and asks the main loop for
// a search. What no keyword mentions stays as it was.
void go_command(Engine& engine, std::string_view rest);

// position_command.cpp

// Sets the game position and makes the moves. From the first token on that names no pseudo-legal
// move the rest is dropped, with a message. A text without "startpos" and "fen" changes nothing.
void position_command(Engine& engine, std::string_view rest);

// uci_options.cpp

// The option lines of the "uci" reply, with the current values.
void print_uci_options(const Engine& engine);

// Sets an option and prints its reply; a name that is not known gets none.
void setoption_command(Engine& engine, std::string_view rest);

// The name and the first word of the value; both empty when there is no name. A button has no
// value.
struct OptionText {
    std::string_view name;
    std::string_view value;
};
OptionText parse_option(std::string_view rest);

// Finds the tables in SyzygyPath and tells their number.
void load_tablebases(Engine& engine);

}  // namespace quon
