#pragma once
// Tests of single moves: possible at all, legal, giving check.

#include "board/position.h"

namespace quon {

// What the legality of many moves of one position depends on, computed once per node.
struct KingGuard {
    int king;  // king square of the side to move
    bool in_check;
    Bitboard pinned;  // own pieces that alone stand between the king and an enemy slider
};
KingGuard king_guard(const Position& p, bool in_check);
inline KingGuard king_guard(const Position& p) { return king_guard(p, in_check(p)); }

// True if the pseudo-legal move of the side to move leaves its king safe and, when castling,
// crosses no attacked square. `guard` must be that of the position.
[[nodiscard]] bool is_legal(const Position& p, Move move, const KingGuard& guard);
[[nodiscard]] inline bool is_legal(const Position& p, Move move) {
    return is_legal(p, move, king_guard(p));
}

// 0 no check, 1 direct check, 2 discovered check (a double check counts as 2). A promotion counts
// as the promoted piece; a castling rook's and an en-passant capture's lines are not looked at.
[[nodiscard]] int gives_check(const Position& p, const MoveEntry& entry);

// True if the generators would produce the move in this position. Accepts any 16-bit code.
[[nodiscard]] bool is_pseudo_legal(const Position& p, Move move);

// True if the code is a legal move here; false in a position that cannot be searched.
[[nodiscard]] bool can_be_made(const Position& p, Move move);

[[nodiscard]] bool has_legal_move(const Position& p);

}  // namespace quon
