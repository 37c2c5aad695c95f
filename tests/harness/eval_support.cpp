// Helpers of the evaluation tests.

#include "harness/eval_support.h"

#include "board/fen.h"
#include "harness/board_support.h"

namespace quon::test {

std::unique_ptr<EvalState> make_eval_state() {
    auto state = std::make_unique<EvalState>();
    state->tables = eval_tables;
    return state;
}

Evaluation evaluate_traced(EvalState& state, const Position& p) {
    Evaluation result{};
    result.score = evaluate(state, p, result.notes, {1, in_check(p), false, &result.trace});
    return result;
}

Evaluation evaluate_fresh(std::string_view fen, const EvalTables& tables) {
    const auto state = make_eval_state();
    state->tables = tables;
    return evaluate_traced(*state, make_game(fen)->position);
}

int evaluate_contempt(std::string_view fen, int contempt, int root_side, bool active) {
    const auto state = make_eval_state();
    state->contempt_active = active;
    state->root_side = root_side;
    state->tables.terms.contempt = i16(contempt);
    return evaluate_traced(*state, make_game(fen)->position).score;
}

std::string square_list(Bitboard squares) {
    std::string text;
    while (squares) {
        if (!text.empty()) text += ' ';
        text += square_name[pop_square(squares)];
    }
    return text;
}

}  // namespace quon::test
