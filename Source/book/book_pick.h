#pragma once
// Choosing a move from an opening book.

#include <optional>
#include <vector>

#include "board/position.h"
#include "book/book.h"
#include "support/random.h"

namespace quon {

// What the book knows of a move.
struct BookMove {
    Move move;
    BookRecord record;
    float share;    // of the points
    bool good;      // did well enough in enough games
    double weight;  // of a good move: logarithm of its points
};

// The position's moves that the book knows and that were not always lost, the promising ones first.
// Nothing without a book, in a position that cannot be searched, and in a game that has left the
// book. Moves are tried on the position itself, which can change the order of its piece lists.
std::optional<std::vector<BookMove>> book_moves(Book& book, Position& p);

// One of the good moves, drawn in favour of the better ones; none without one. variety: 1 or
// more, the percentage of the largest weight, doubled, that chance may add to each.
std::optional<BookMove> draw_book_move(const std::vector<BookMove>& moves, int variety,
                                       Random& random);

}  // namespace quon
