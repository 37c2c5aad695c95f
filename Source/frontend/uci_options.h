#pragma once
// The options of UCI.

#include <string_view>

namespace quon {

struct Engine;

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
