#pragma once
// Static exchange evaluation: the material outcome of captures on one square.
//
// Both sides always recapture with their least valuable piece, and each may stop when going on
// would lose. Rg1xg7 with a pawn on g7 defended by a pawn is 100 - 530: the rook falls and White,
// with nothing left to recapture, stops. Sliders behind a piece that has captured join in. A king
// that takes a defended piece counts as lost for 9999; promotions and the pawn taken en passant are
// not valued. One call costs a few table lookups per capture; no board is changed.
// Compared with figures of another program in tests/board/reference_test.cpp.

#include "board/position.h"

namespace quon {

// Centipawns by piece type.
constexpr Table<int, 7> SEE_VALUE = {{0, 100, 330, 330, 530, 1060, 10000}};
constexpr int SEE_KING_CAPTURE = 9999;

// Gain in centipawns for `side`, which captures first, on `to`. `from` is the first capturer's
// square, or NO_SQUARE for the least valuable one (then 0 when nobody attacks `to`). `to` may be
// empty: then the value says what happens to the piece that arrives there.
[[nodiscard]] int see(const Position& p, int side, int from, int to);

}  // namespace quon
