#pragma once
// Passed pawns and pawns that may become passed.

namespace quon {

struct EvalInfo;

// Scores the passed pawns of both colours; a sound push adds to the threat against the other side.
void evaluate_passed(EvalInfo& info);
// Scores the candidates, in the ending only.
void evaluate_candidates(EvalInfo& info);

}  // namespace quon
