// The evaluation as a whole: its frame, its caches, its symmetries.

#include "eval/evaluate.h"

#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/keys.h"
#include "support/board_support.h"
#include "support/eval_support.h"

namespace quon::test {
namespace {

TEST(Evaluate, StartPositionIsWorthTheTempo) {
    const std::string fen = START_FEN;
    EXPECT_EQ(evaluate_fresh(fen).score, 16);  // 14 * 154 / 128
    EXPECT_EQ(evaluate_fresh("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq -").score, 16);
}

// Pawns 8 - 16 and -20, passed pawns 192 and 12, kings -35 each, the tempo 7: 156 against -43,
// which counts 154/128.
TEST(Evaluate, PositionalSumsCountMoreThanMaterial) {
    EXPECT_EQ(evaluate_fresh("6k1/7p/P7/8/8/8/8/6K1 w - -").score, 239);
}

TEST(Evaluate, InCheckThereIsNoScore) {
    const auto state = make_eval_state();
    const auto game = make_game("4k3/8/8/8/8/8/4r3/4K3 w - -");
    EXPECT_EQ(evaluate_traced(*state, game->position).score, -10000);
    EXPECT_EQ(state->evaluations, 0U);
    EXPECT_EQ(traced.total[TRACE_KINGS][BLACK], 0);
}

TEST(Evaluate, Material) {
    struct Case {
        const char* fen;
        int stage, white, black;
    };
    const Case cases[] = {
        // A lone queen loses 50 from its ending value.
        {"4k2r/p7/8/8/8/8/P7/3QK3 w - -", 18, (1270 * 6 + 1240 * 18) / 24,
         (620 * 6 + 740 * 18) / 24},
        {"4k1nr/p7/8/8/8/8/P7/1N1QK3 w - -", 16, (1650 * 8 + 1640 * 16) / 24,
         (1000 * 8 + 1090 * 16) / 24},
        {"4k3/p7/8/8/8/8/P7/2QQK3 w - -", 16, (2450 * 8 + 2470 * 16) / 24,
         (90 * 8 + 110 * 16) / 24},
        // The bishop pair; a colour's pieces count for at most half of the stage.
        {"4k3/p7/8/8/8/8/P7/2B1KB2 w - -", 22, (900 * 2 + 880 * 22) / 24, (90 * 2 + 110 * 22) / 24},
        {"4k3/p7/8/8/8/8/PQQQQQ2/4K3 w - -", 12, (5990 * 12 + 6010 * 12) / 24, 100},
    };
    for (const Case& row : cases) {
        const EvalTrace trace = evaluate_fresh(row.fen).trace;
        EXPECT_EQ(trace.stage, row.stage) << row.fen;
        EXPECT_EQ(trace.total[TRACE_MATERIAL][WHITE], row.white) << row.fen;
        EXPECT_EQ(trace.total[TRACE_MATERIAL][BLACK], row.black) << row.fen;
    }
}

TEST(Evaluate, Contempt) {
    struct Case {
        bool active;
        i16 contempt;
        int root_side;
        int score;  // of the start position, where the material makes c * 41 / 41
    };
    const Case cases[] = {
        {true, 100, WHITE, 116},  {true, 100, BLACK, -84}, {true, -100, WHITE, -84},
        {true, -100, BLACK, 116}, {false, 100, WHITE, 16}, {true, 0, BLACK, 16},
    };
    const auto game = make_game(START_FEN);
    for (const Case& row : cases) {
        const auto state = make_eval_state();
        state->contempt_active = row.active;
        state->root_side = row.root_side;
        state->tables.contempt = row.contempt;
        EXPECT_EQ(evaluate_traced(*state, game->position).score, row.score) << row.contempt;
    }
    // Whose material counts: White has a rook and three pawns, 2 + 6, Black two knights, 3.
    const auto uneven = make_game("1n2k1n1/8/8/8/8/8/PPP5/R3K3 w - -");
    const auto change = [&](i16 contempt, int root_side) {
        const auto state = make_eval_state();
        const int before = evaluate_traced(*state, uneven->position).score;
        state->contempt_active = true;
        state->root_side = root_side;
        state->tables.contempt = contempt;
        const Evaluation after = evaluate_traced(*state, uneven->position);
        EXPECT_EQ(after.trace.factor, 1.0);
        return after.score - before;
    };
    EXPECT_EQ(change(410, WHITE), 80);
    EXPECT_EQ(change(410, BLACK), -30);
    EXPECT_EQ(change(-410, WHITE), -30);
    EXPECT_EQ(change(-410, BLACK), 80);
}

TEST(Evaluate, CachesInAnIterationOnly) {
    const auto game =
        make_game("r1bqk2r/ppp2pp1/2n2n2/3pp3/1b2P3/2NP1N2/PPPB1PPP/R2QKB1R w KQkq -");
    const Position& p = game->position;
    const auto state = make_eval_state();
    EvalNotes notes{};
    const int score = evaluate_node(*state, p, notes);
    const EvalNotes expected = notes;
    EXPECT_EQ(state->eval_hits, 0U);
    EXPECT_EQ(state->pawn_hits, 0U);
    EXPECT_EQ(evaluate_node(*state, p, notes), score);
    EXPECT_EQ(notes.threat[WHITE], expected.threat[WHITE]);
    EXPECT_EQ(notes.threat[BLACK], expected.threat[BLACK]);
    EXPECT_EQ(state->eval_hits, 1U);
    EXPECT_EQ(state->evaluations, 2U);
    EXPECT_EQ(state->pawn_probes, 1U);

    // The root reads no scores, but pawns.
    notes = {};
    EXPECT_EQ(evaluate(*state, p, notes, {1, false, true, true}), score);
    EXPECT_EQ(state->eval_hits, 1U);
    EXPECT_EQ(state->pawn_hits, 1U);

    // Outside an iteration nothing is read: new tables act at once.
    state->tables.piece_value[PAWN] = {500, 500};
    state->tables.pawn_weak = {-50, -50};
    const auto fresh = make_eval_state();
    fresh->tables = state->tables;
    notes = {};
    const int changed = evaluate(*state, p, notes, {2, false, false, true});
    EXPECT_NE(changed, score);
    EXPECT_EQ(changed, evaluate_traced(*fresh, p).score);
    EXPECT_EQ(state->eval_hits, 1U);
    EXPECT_EQ(state->pawn_hits, 1U);
    EXPECT_EQ(state->evaluations, 4U);
}

TEST(Evaluate, CachedEqualsComputed) {
    const auto cached = make_eval_state();
    const auto fresh = make_eval_state();
    int hits = 0;
    visit_random_positions(scaled(20000), 5, [&](Game& game) {
        const Position& p = game.position;
        EvalNotes first{};
        EvalNotes second{};
        const bool check = in_check(p);
        const int expected = evaluate(*fresh, p, first, {2, check, false, true});
        const u64 before = cached->eval_hits;
        for (int time = 0; time < 2; ++time) {
            ASSERT_EQ(evaluate_node(*cached, p, second), expected) << position_to_fen(p);
            ASSERT_EQ(second.threat[WHITE], first.threat[WHITE]) << position_to_fen(p);
            ASSERT_EQ(second.threat[BLACK], first.threat[BLACK]) << position_to_fen(p);
            ASSERT_EQ(second.eval_final, first.eval_final) << position_to_fen(p);
        }
        hits += int(cached->eval_hits - before);
    });
    EXPECT_GT(hits, 1000);
    EXPECT_GT(cached->pawn_hits, 0U);
}

// The exchange evaluator takes with the lowest square of equal attackers, and what stands behind it
// can decide: a mirror image then differs now and then.
struct Symmetry {
    std::unique_ptr<EvalState> state = make_eval_state();
    int positions = 0;
    int broken = 0;
    std::string first;

    void compare(const Position& p, const std::string& image) {
        const auto other = make_game(image);
        const bool same =
            evaluate_traced(*state, p).score == evaluate_traced(*state, other->position).score;
        ++positions;
        if (!same && broken++ == 0) first = position_to_fen(p) + " and " + image;
    }
    void expect_kept() const {
        EXPECT_GT(positions, 0);
        EXPECT_LE(broken * 200, positions) << broken << " of " << positions << ", first " << first;
    }
};

TEST(Evaluate, SymmetryInRandomPlay) {
    Symmetry colors;
    Symmetry files;
    visit_random_positions(scaled(4000), 8, [&](Game& game) {
        colors.compare(game.position, flip_colors(game.position));
        files.compare(game.position, mirror_files(game.position));
    });
    colors.expect_kept();
    files.expect_kept();
}

TEST(Evaluate, SymmetryInGamePositions) {
    Symmetry colors;
    Symmetry files;
    for (const std::string& fen : shared_lines("/data/positions.fen")) {
        const auto game = make_game(fen);
        colors.compare(game->position, flip_colors(game->position));
        files.compare(game->position, mirror_files(game->position));
    }
    if (colors.positions == 0) GTEST_SKIP() << "positions.fen is not there";
    colors.expect_kept();
    files.expect_kept();
}

TEST(Evaluate, TraceOnlyOutsideIterationsAtTheMainThreadsRoot) {
    const auto game = make_game("r3k3/8/8/8/8/8/P7/R3K3 w - -");
    const auto state = make_eval_state();
    const EvalCall silent[] = {
        {1, false, true, true}, {2, false, false, true}, {1, false, false, false}};
    for (const EvalCall& call : silent) {
        reset_trace();
        EvalNotes notes{};
        evaluate(*state, game->position, notes, call);
        EXPECT_EQ(traced.total[TRACE_MATERIAL][WHITE], 0);
        EXPECT_EQ(traced.total[TRACE_PAWNS][WHITE], 0);
        EXPECT_EQ(traced.stage, 0);
    }
}

TEST(Evaluate, TraceOfLoneKingEndings) {
    const EvalTrace mates = evaluate_fresh("8/8/8/8/3K4/8/8/k1B1N3 b - -").trace;
    EXPECT_EQ(mates.square[27], -944);  // d4; as returned, for the side to move
    EXPECT_EQ(mates.total[TRACE_KINGS][WHITE], -944);
    EXPECT_EQ(mates.total[TRACE_KINGS][BLACK], 0);
    const EvalTrace rook = evaluate_fresh("7R/8/8/8/8/8/8/k1K5 b - -").trace;
    EXPECT_EQ(rook.square[C1], 740);
    EXPECT_EQ(rook.square[A1], 0);
    EXPECT_EQ(rook.total[TRACE_KINGS][WHITE], 740);
    EXPECT_EQ(rook.total[TRACE_KINGS][BLACK], 0);
    EXPECT_EQ(rook.stage, 0);
}

}  // namespace
}  // namespace quon::test
