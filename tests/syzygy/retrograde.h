#pragma once
// King and one piece against king, every position solved from the rules alone: what test tables
// are made from and compared with.
//
// The side with the piece is White. Sets of black king squares are the unit of work.

#include "board/bitboard.h"
#include "syzygy/tbprobe.h"

namespace quon::test {

struct Solution {
    int piece = NO_TYPE;  // White's third man
    // [side to move][white king][piece]: black king squares that make a legal position; those from
    // which White wins
    Bitboard legal[2][64][64] = {};
    Bitboard won[2][64][64] = {};
    // [side to move][white king][piece][black king]: plies to the next capture, pawn move or mate
    // with best play, above 0 for the winner, below for the loser (-1 when mated); 0 if drawn
    i8 dtz[2][64][64][64] = {};
};

// The ending with a pawn, knight, bishop, rook or queen; solved at the first call.
const Solution& solution(int piece);

// Calls visit(king, at, enemy) for the legal positions with this side to move.
template <typename Visit>
void each_position(const Solution& s, int side, const Visit& visit) {
    for (int king = 0; king < 64; ++king) {
        for (int at = 0; at < 64; ++at) {
            for (Bitboard enemies = s.legal[side][king][at]; enemies;) {
                visit(king, at, pop_square(enemies));
            }
        }
    }
}

// The position with `strong` as the colour of the piece; `side` is to move, WHITE for its owner.
ProbePosition probe_position(int piece, int strong, int side, int king, int at, int enemy);

// A capture decides: Black, to move, can take the piece.
bool black_takes(int king, int at, int enemy);

}  // namespace quon::test
