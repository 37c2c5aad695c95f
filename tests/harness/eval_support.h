#pragma once
// What tests of the evaluation share: an evaluation of one position with everything it reports.

#include "eval/eval_trace.h"
#include "eval/evaluate.h"
#include "harness/board_support.h"
#include "harness/engine.h"

namespace quon::test {

// One evaluation outside a search, as the console's breakdown makes it.
struct Evaluation {
    int score;
    EvalNotes notes;
    EvalTrace trace;
};

// A thread's record with the tables of the live parameters and empty caches.
inline std::unique_ptr<EvalState> make_eval_state() {
    auto state = std::make_unique<EvalState>();
    state->tables = eval_tables;
    return state;
}

// With the caches of `state`; with fresh ones.
inline Evaluation evaluate_traced(EvalState& state, const Position& p) {
    Evaluation result{};
    result.score = evaluate(state, p, result.notes, {1, in_check(p), false, &result.trace});
    return result;
}
inline Evaluation evaluate_fresh(std::string_view fen, const EvalTables& tables = eval_tables) {
    const auto state = make_eval_state();
    state->tables = tables;
    return evaluate_traced(*state, make_game(fen)->position);
}

// The score under a contempt.
inline int evaluate_contempt(std::string_view fen, int contempt, int root_side,
                             bool active = true) {
    const auto state = make_eval_state();
    state->contempt_active = active;
    state->root_side = root_side;
    state->tables.terms.contempt = i16(contempt);
    return evaluate_traced(*state, make_game(fen)->position).score;
}

// The squares of a set as "a1 b2", lowest first.
inline std::string square_list(Bitboard squares) {
    std::string text;
    while (squares) {
        if (!text.empty()) text += ' ';
        text += square_name[pop_square(squares)];
    }
    return text;
}

}  // namespace quon::test
