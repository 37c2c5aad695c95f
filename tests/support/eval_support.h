#pragma once
// What tests of the evaluation share: an evaluation of one position with everything it reports.

#include <memory>
#include <string>
#include <string_view>

#include "eval/eval_params.h"
#include "eval/eval_trace.h"
#include "eval/evaluate.h"

namespace quon::test {

// One evaluation outside a search, as the console's breakdown makes it.
struct Evaluation {
    int score;
    EvalNotes notes;
    EvalTrace trace;
};

// A thread's record with the tables of the live parameters and empty caches.
std::unique_ptr<EvalState> make_eval_state();

// With fresh caches, and with the given tables; the last form uses the caches of `state`.
Evaluation evaluate_fresh(std::string_view fen);
Evaluation evaluate_fresh(std::string_view fen, const EvalTables& tables);
Evaluation evaluate_traced(EvalState& state, const Position& p);

// One evaluation as the search makes it at an inner node.
int evaluate_node(EvalState& state, const Position& p, EvalNotes& notes);

// The squares of a set as "a1 b2", lowest first.
std::string square_list(Bitboard squares);

// Puts the live parameters and the master tables back at the end of a test.
struct RestoreParams {
    RestoreParams();
    ~RestoreParams();
    RestoreParams(const RestoreParams&) = delete;
    RestoreParams& operator=(const RestoreParams&) = delete;

private:
    EvalParams record;
};

}  // namespace quon::test
