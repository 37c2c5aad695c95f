#pragma once
// Making a book from the games of a PGN file.

#include "board/position.h"

namespace quon {

// Reads the games of "book.pgn" in the working directory, replays the first 50 plies of each on the
// position, and writes every position that occurred at least nine times into "book.opn" there. Does
// nothing without "book.pgn". Prints its steps; on a terminal also how far it is, and a summary.
// `keep_on`, if given, is asked all the time; false ends it, which is printed. After that or a
// failure, which is printed too, a "book.opn" from before is as it was.
//
// The book in use is closed and the setting that names it emptied. The position ends up as the
// start position; no search may be using it.
void build_book(Position& position, bool (*keep_on)() = nullptr);

}  // namespace quon
