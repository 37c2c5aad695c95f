#pragma once
// What tests of the opening book share: a directory of their own to work in, books on disk, and a
// slow but obvious count of what happened in games.

#include <map>

#include "book/book.h"
#include "engine/report.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "harness/files.h"

namespace quon::test {

// The working directory is an empty one and there is no book, until the end of the test; the
// options are put back then.
struct BookDirectory : Directory {
    BookDirectory() : Directory(true) { book_close(engine.book); }
    ~BookDirectory() {
        book_close(engine.book);
        options = saved;
    }

private:
    const EngineOptions saved = options;
};

using Records = std::vector<BookRecord>;

// The records in the order of a book, and of those with the same key the first only.
Records in_order(Records records);

// Records as the bytes of a book, and back. Fails the test if the bytes are no whole records or a
// reserved field is not zero.
std::string bytes_of(const Records& records);
Records records_of(const std::string& bytes);

// Sets the option and opens the book; returns what is printed.
inline std::string open_book(const std::string& path) {
    options.book_file = path;
    return captured_output([] { load_book(engine); });
}

// The game after the moves (coordinates), and the record of its position.
std::unique_ptr<Game> game_after(const std::string& moves, std::string_view fen = START_FEN);
inline BookRecord record_of(const Position& p, int losses, int wins, int draws) {
    return {record_key(p), u16(losses), u16(wins), u16(draws)};
}

// Counters of positions in games, in the order of a book.
using GameCount = std::map<std::pair<u16, u32>, std::array<i64, 3>, std::greater<>>;
inline void add(GameCount& count, const BookRecord& r) {
    auto& counters = count[{r.key.key16, r.key.key32}];
    counters = {counters[0] + r.losses, counters[1] + r.wins, counters[2] + r.draws};
}
// The positions with that many games at least, the counters limited to 60,000.
Records records_of(const GameCount& count, int least);

}  // namespace quon::test
