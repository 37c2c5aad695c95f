#pragma once
// Making moves and taking them back, exact in every redundant field and both keys.

#include "board/position.h"

namespace quon {

// Makes a pseudo-legal move of the side to move; legality is the caller's business.
void make_move(Position& p, Move move);
// Takes back the move on top of the game record. A piece that returns to the board goes to the end
// of its list, so list order can differ from before.
void unmake_move(Position& p);

// Passes the turn, and takes the pass back. The keys do not change.
void make_null_move(Position& p);
void unmake_null_move(Position& p);

// make_move for the game itself: makes room in a full record by forgetting its older half.
void make_game_move(Game& game, Move move);

}  // namespace quon
