#pragma once
// What is known about endings: material that settles the score at once, and how far a score can be
// believed when little material is left.

#include "board/position.h"
#include "eval/evaluate.h"

namespace quon {

struct EvalInfo;

// True when the material decides; `score` is then final, from the side to move's view, and
// notes.eval_final says that it is a dead draw. Adds to the trace, if there is one.
bool material_shortcut(const Position& p, EvalNotes& notes, EvalTrace* trace, int& score);

// The factor in [0.05, 1.0] that the score, from the side to move's view, is worth. Needs the
// attack maps of `info`.
double scale_factor(const EvalInfo& info, int score);

}  // namespace quon
