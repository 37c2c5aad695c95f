#pragma once
// What tests of the console share: a console without its main loop, in an empty directory.

#include <filesystem>
#include <string>

#include "harness/files.h"
#include "harness/search_support.h"

namespace quon::test {

// For the life of a test: console mode, an idle search thread, the start position, and a working
// directory of its own.
struct ConsoleRig {
    ConsoleRig();
    ~ConsoleRig();
    ConsoleRig(const ConsoleRig&) = delete;
    ConsoleRig& operator=(const ConsoleRig&) = delete;

private:
    const SearchRig search;
    std::filesystem::path before;
    std::string directory;
};

// What a command line writes to standard output.
std::string console(const std::string& line);
// The same for "edit" with these lines on standard input and the one that ends it.
std::string edit(const std::string& lines);

// The diagram of the game position.
std::string board_text();
std::string game_fen();

// The first difference between two games in position or record, the order of piece lists and what
// can be replayed left aside; "" if there is none.
std::string game_difference(const Game& a, const Game& b);

}  // namespace quon::test
