#pragma once
// Counts move paths, the standard check of generation, legality and make/unmake together.

#include <functional>
#include <optional>

#include "board/position.h"

namespace quon {

// Legal move sequences of exactly `depth` plies from the position; 0 for a depth below 1.
// `keep_on`, if given, is asked every few milliseconds; nothing once it has said no.
[[nodiscard]] std::optional<u64> perft(Position& p, int depth,
                                       const std::function<bool()>& keep_on = {});

}  // namespace quon
