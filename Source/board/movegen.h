#pragma once
// Pseudo-legal move generation, in a fixed order that is part of the engine's behaviour: bitboards
// lowest square first, pieces in the order of their lists.

#include "board/position.h"

namespace quon {

// Each generator appends records from `out` on and returns the end; `order` is left unset. The
// caller's list has room for MAX_LIST records.
// Captures, en passant included, but no promotions.
[[nodiscard]] MoveEntry* gen_captures(const Position& p, MoveEntry* out);
// Promotions, with and without capture: to a queen alone, or to all four pieces.
[[nodiscard]] MoveEntry* gen_promotions(const Position& p, bool all_four, MoveEntry* out);
// Moves that neither capture nor promote, castling included.
[[nodiscard]] MoveEntry* gen_quiets(const Position& p, MoveEntry* out);

// True if the side to move has the right to castle, its king at home and nothing between king and
// rook. Attacks on the king's path are not looked at.
[[nodiscard]] bool castling_possible(const Position& p, bool king_side);

// Captures, all promotions, quiet moves; ends with a LIST_END record and returns that record's
// place.
MoveEntry* gen_all(const Position& p, MoveEntry* out);

inline MoveEntry* terminate_list(MoveEntry* end) {
    end->move = LIST_END;
    return end;
}

}  // namespace quon
