#pragma once
// Pieces that stand badly right now: attacked pawns, hung pieces, pinned pieces.

namespace quon {

struct EvalInfo;

// Scores weak pawns and hung pieces of both colours; the threat against a colour becomes at least
// the value of its most valuable hung piece.
void evaluate_threats(EvalInfo& info);
// Scores pieces pinned to their king or to a lone queen.
void evaluate_pins(EvalInfo& info);

}  // namespace quon
