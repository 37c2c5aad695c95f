#pragma once
// Draws by the fifty-move rule and by repetition.

#include "board/position.h"

namespace quon {

// 0 no draw; 1 a hundred plies without progress and a legal move left; 2 the position stands on the
// board for the `count`-th time since the last capture, pawn move or castling move. Only placement
// and side to move are compared.
[[nodiscard]] int is_draw(const Position& p, int count);

}  // namespace quon
