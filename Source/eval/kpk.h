#pragma once
// King and pawn against king, solved at start-up.

#include "board/position.h"

namespace quon {

// Solves every position; call once, before the first evaluation.
void build_kpk_bitbase();

// The squares of a king-and-pawn ending; `strong` is the pawn's colour.
struct KpkPosition {
    int strong;
    int pawn;
    int strong_king;
    int weak_king;
    int side;  // to move
};

// +800 or -800 from the side to move's view when the pawn's side wins, 0 for a draw.
[[nodiscard]] int kpk_probe(const KpkPosition& squares);
// The same for a position with one pawn and no other piece but the kings.
[[nodiscard]] int kpk_probe(const Position& p, int side);

}  // namespace quon
