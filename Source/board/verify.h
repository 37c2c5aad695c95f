#pragma once
// Whether a position's redundant fields still describe the same pieces.

#include <string_view>

#include "board/position.h"

namespace quon {

// The first field that does not follow from `board`, the order of the lists left aside, or that no
// position may hold; empty if all is well. Safe on a corrupted position.
[[nodiscard]] std::string_view verify(const Position& p);

}  // namespace quon
