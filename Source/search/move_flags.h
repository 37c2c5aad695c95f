#pragma once
// What kind of move it is, for extensions, reductions and pruning.

#include "board/position.h"

namespace quon {

enum MoveFlag : int {
    CAPTURE = 1,  // en passant included
    CHECK = 2,
    DISCOVERED_CHECK = 4,  // together with CHECK; a double check counts
    PAWN_TO_SEVENTH = 8,
    QUEEN_PROMOTION = 16,
    PASSED_PAWN_PUSH = 32,  // to the fifth or sixth rank, no enemy pawn can stop or take it
};

// The flags of a move of the side to move, which is not in check.
int move_flags(const Position& p, const MoveEntry& entry);

bool is_castling_move(const MoveEntry& entry);

// True if the quiet move attacks something worth more than the mover, or the squares around the
// enemy king, that it did not attack before.
bool is_threat(const Position& p, const MoveEntry& entry);

}  // namespace quon
