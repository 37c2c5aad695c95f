#pragma once
// Knights, bishops, rooks and queens.

namespace quon {

struct EvalInfo;

// Scores the pieces of both colours and fills their attack maps, the double attacks and the numbers
// of king attackers.
void evaluate_pieces(EvalInfo& info);

}  // namespace quon
