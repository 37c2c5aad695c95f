#pragma once
// The random numbers behind the position keys.

#include "board/position.h"

namespace quon {

extern Table<Table<u64, 64>, 16> piece_sq_keys;  // [piece code][square]
// One table, two uses: state_keys[ep] (0..64) and state_keys[castle] (0..15).
extern Table<u64, 66> state_keys;
constexpr Table<u64, 2> side_keys = {{0, 0xFFFFFFFFFFFFFFFF}};

// Fills the tables on the first call; later calls do nothing. Prints "bad hashcode" if five
// candidates in a row were too close to an earlier key (never, with these seeds).
void init_keys();

// The key of placement, side, castling and en passant: what the transposition table uses.
inline u64 full_key(const Position& p) {
    return p.key ^ state_keys[p.ep] ^ state_keys[p.castle] ^ side_keys[p.side];
}

// Adds or removes a piece in `key`, and in `pawn_key` too for a pawn.
inline void toggle_key(Position& p, int piece, int square) {
    const u64 number = piece_sq_keys[piece][square];
    p.key ^= number;
    if (type_of(piece) == PAWN) p.pawn_key ^= number;
}

}  // namespace quon
