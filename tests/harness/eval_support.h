#pragma once
// What tests of the evaluation share: an evaluation of one position with everything it reports.

#include <memory>
#include <string>
#include <string_view>

#include "eval/eval_trace.h"
#include "eval/evaluate.h"
#include "harness/engine.h"

namespace quon::test {

// One evaluation outside a search, as the console's breakdown makes it.
struct Evaluation {
    int score;
    EvalNotes notes;
    EvalTrace trace;
};

// A thread's record with the tables of the live parameters and empty caches.
std::unique_ptr<EvalState> make_eval_state();

// With the caches of `state`; with fresh ones.
Evaluation evaluate_traced(EvalState& state, const Position& p);
Evaluation evaluate_fresh(std::string_view fen, const EvalTables& tables = eval_tables);

// The score under a contempt.
int evaluate_contempt(std::string_view fen, int contempt, int root_side, bool active = true);

// The squares of a set as "a1 b2", lowest first.
std::string square_list(Bitboard squares);

}  // namespace quon::test
