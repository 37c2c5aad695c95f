#pragma once
// What tests of the opening book share: a directory of their own to work in, books on disk, and a
// slow but obvious count of what happened in games.

#include <map>
#include <string>
#include <vector>

#include "book/book_record.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "harness/files.h"

namespace quon::test {

// The working directory is an empty one and there is no book, until the end of the test; the
// options are put back then.
class BookDirectory {
public:
    BookDirectory();
    ~BookDirectory();
    BookDirectory(const BookDirectory&) = delete;
    BookDirectory& operator=(const BookDirectory&) = delete;

    const std::string path;

private:
    const std::string left;
    const EngineOptions saved;
};

using Records = std::vector<BookRecord>;

// The records in the order of a book; records as the bytes of a book, and back. Fails the test if
// the bytes are no whole records or a reserved field is not zero.
Records in_order(Records records);
std::string bytes_of(const Records& records);
Records records_of(const std::string& bytes);

// Sets the option and opens the book; returns what is printed.
std::string open_book(const std::string& path);

// The game after the moves (coordinates), and the record of its position.
std::unique_ptr<Game> game_after(const std::string& moves, std::string_view fen = START_FEN);
BookRecord record_of(const Position& p, int losses, int wins, int draws);

// What games did to positions, each known by its placement, side to move and en-passant square.
struct Outcomes {
    int losses = 0, wins = 0, draws = 0;
};
using GameCount = std::map<std::string, Outcomes>;
std::string identity(const Position& p);
// Counts the position for the side that has just moved; `winner` as in "1-0", "0-1", anything else.
void count_position(GameCount& count, const Position& p, const std::string& result);

// Expects the book to hold exactly the positions with at least nine games, with their counters:
// each is looked up by setting it up again.
void expect_book(const std::string& path, const GameCount& count);

}  // namespace quon::test
