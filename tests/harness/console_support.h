#pragma once
// What tests of the console share: a console without its main loop, in an empty directory.

#include "harness/files.h"
#include "harness/search_support.h"

namespace quon::test {

// For the life of a test: console mode, an idle search thread, the start position, a working
// directory of its own, and a standard input that is open and empty.
class ConsoleRig {
public:
    ConsoleRig();
    ~ConsoleRig();
    ConsoleRig(const ConsoleRig&) = delete;
    ConsoleRig& operator=(const ConsoleRig&) = delete;

    // What "edit" prints with these lines on standard input and the one that ends it.
    std::string edit(const std::string& lines) const;

private:
    const SearchRig search_;
    const Directory directory_{true};
    int input_[3];  // the one before, and both ends of the one now
};

// What a command line writes to standard output.
std::string console(const std::string& line);

// The diagram of the game position.
std::string board_text();
std::string game_fen();

// The first difference between two games in position or record, the order of piece lists and what
// can be replayed left aside; "" if there is none.
std::string game_difference(const Game& a, const Game& b);

}  // namespace quon::test
