#pragma once
// Making a book from the games of a PGN file.

#include "board/position.h"
#include "book/book_merge.h"

namespace quon {

// Reads the games of "book.pgn" in the working directory, replays the first 50 plies of each on the
// position, and writes every position that occurred at least nine times into "book.opn" there. Does
// nothing without "book.pgn". Tells its steps; on a terminal also how far it is, and a summary.
// When it is ended, which it tells, and after a failure, a "book.opn" from before is as it was.
//
// The book in use must be closed. The position ends up as the start position; no search may be
// using it.
void build_book(Position& position, const BookWork& work);

}  // namespace quon
