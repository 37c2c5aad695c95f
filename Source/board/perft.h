#pragma once
// Counts move paths, the standard check of generation, legality and make/unmake together.

#include "board/position.h"

namespace quon {

// Legal move sequences of exactly `depth` plies from the position; 0 for a depth below 1.
u64 perft(Position& p, int depth);

}  // namespace quon
