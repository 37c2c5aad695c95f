// The evaluation as a whole: its frame, its caches, its figures.

#include "harness/eval_support.h"

namespace quon::test {
namespace {

TEST(Evaluate, Contempt) {
    // White has a rook and three pawns, 2 + 6, Black two knights, 3.
    constexpr char UNEVEN[] = "1n2k1n1/8/8/8/8/8/PPP5/R3K3 w - -";
    const int base = evaluate_contempt(UNEVEN, 0, WHITE);
    const std::tuple<const char*, int, int, int> cases[] = {
        // In the start position the material makes c * 41 / 41.
        {START_FEN, 100, WHITE, 116},     {START_FEN, 100, BLACK, -84},
        {START_FEN, -100, WHITE, -84},    {START_FEN, -100, BLACK, 116},
        {UNEVEN, 410, WHITE, base + 80},  {UNEVEN, 410, BLACK, base - 30},
        {UNEVEN, -410, WHITE, base - 30}, {UNEVEN, -410, BLACK, base + 80},
    };
    for (const auto& [fen, contempt, root_side, score] : cases) {
        EXPECT_EQ(evaluate_contempt(fen, contempt, root_side), score) << fen << contempt;
        EXPECT_EQ(evaluate_contempt(fen, contempt, root_side, false),
                  evaluate_contempt(fen, 0, root_side));
    }
}

TEST(Evaluate, CachesInAnIterationOnly) {
    const auto game =
        make_game("r1bqk2r/ppp2pp1/2n2n2/3pp3/1b2P3/2NP1N2/PPPB1PPP/R2QKB1R w KQkq -");
    const Position& p = game->position;
    const auto state = make_eval_state();
    EvalNotes notes{};
    const auto score_and_counts = [&](int ply, bool iterating) {
        const int score = evaluate(*state, p, notes, {ply, false, iterating, nullptr});
        return std::vector<int>{score, int(state->evaluations.get()), int(state->eval_hits.get()),
                                int(state->pawn_probes.get()), int(state->pawn_hits.get())};
    };
    const int score = evaluate_fresh(position_to_fen(p)).score;
    EXPECT_EQ(score_and_counts(2, true), (std::vector<int>{score, 1, 0, 1, 0}));
    EXPECT_EQ(score_and_counts(2, true), (std::vector<int>{score, 2, 1, 1, 0}));
    // The root reads no scores, but pawns.
    EXPECT_EQ(score_and_counts(1, true), (std::vector<int>{score, 3, 1, 2, 1}));
    // Outside an iteration nothing is read: new tables act at once.
    state->tables.terms.pawn_value = {500, 500};
    state->tables.terms.pawn_weak = {-50, -50};
    const int changed = evaluate_fresh(position_to_fen(p), state->tables).score;
    EXPECT_NE(changed, score);
    EXPECT_EQ(score_and_counts(2, false), (std::vector<int>{changed, 4, 1, 3, 1}));
}

TEST(Evaluate, CachedEqualsComputed) {
    const auto cached = make_eval_state();
    const auto fresh = make_eval_state();
    visit_random_positions(scaled(20000), 5, [&](Game& game) {
        const Position& p = game.position;
        const bool check = in_check(p);
        EvalNotes first{};
        const int expected = evaluate(*fresh, p, first, {2, check, false, nullptr});
        for (int time = 0; time < 2; ++time) {
            EvalNotes second{};
            ASSERT_EQ(evaluate(*cached, p, second, {2, check, true, nullptr}), expected);
            ASSERT_EQ(second.threat[WHITE], first.threat[WHITE]) << position_to_fen(p);
            ASSERT_EQ(second.threat[BLACK], first.threat[BLACK]) << position_to_fen(p);
            ASSERT_EQ(second.eval_final, first.eval_final) << position_to_fen(p);
        }
    });
    EXPECT_GT(cached->eval_hits, 1000U);
    EXPECT_GT(cached->pawn_hits, 0U);
}

// Every term of many positions against figures of another program.
TEST(EvalReference, NoDifference) {
    const auto state = make_eval_state();
    expect_reference("evaluation", [&](const Position& p) {
        const auto [score, notes, trace] = evaluate_traced(*state, p);
        Lines cells = {std::to_string(score),
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
