#pragma once
// Choosing a move from the opening book.

#include "board/position.h"

namespace quon {

// A move of the position that has done well in enough games, drawn at random with std::rand in
// favour of the good ones; NO_MOVE when the book offers none. Prints what it knows of every move.
// Moves are tried on the position itself, which can change the order of its piece lists.
Move book_pick(Position& p);

// The same for a person to see; with `announce` the choice is printed as well.
void book_show(Position& p, bool announce);

}  // namespace quon
