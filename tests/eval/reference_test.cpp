// Every term of many positions against figures of another program.

#include <gtest/gtest.h>

#include "harness/board_support.h"
#include "harness/eval_support.h"
#include "support/text.h"

namespace quon::test {
namespace {

TEST(EvalReference, NoDifference) {
    const auto state = make_eval_state();
    expect_reference("evaluation", [&](const Position& p) {
        const auto [score, notes, trace] = evaluate_traced(*state, p);
        std::vector<std::string> cells = {std::to_string(score),
                                          "*",  // the quiescence search's score
                                          std::to_string(trace.stage),
                                          format("%0.2f", trace.factor),
                                          square_list(trace.hung),
                                          square_list(trace.pinned)};
        for (const auto& sides : trace.total) {
            cells.push_back(format("%d,%d", sides[WHITE], sides[BLACK]));
        }
        std::string squares;
        for (int square = 0; square < 64; ++square) {
            if (square > 0) squares += ',';
            if (p.board[square] != 0) squares += std::to_string(trace.square[square]);
        }
        cells.push_back(squares);
        return cells;
    });
}

}  // namespace
}  // namespace quon::test
