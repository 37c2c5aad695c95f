// Pawns, pieces, kings, passed pawns and threats in positions made for them, with figures worked
// out by hand.

#include "eval/parameters.h"
#include "harness/eval_support.h"

namespace quon::test {
namespace {

struct SquareCase {
    const char* fen;
    const char* square;
    int op, en;  // what stands on the square is worth
};

// The cases hold for the given tables at each position's own stage.
void expect_squares(const EvalTables& tables, const std::vector<SquareCase>& cases) {
    for (const SquareCase& row : cases) {
        const EvalTrace trace = evaluate_fresh(row.fen, tables).trace;
        const int expected = (row.op * (24 - trace.stage) + row.en * trace.stage) / 24;
        EXPECT_EQ(trace.square[square_of(row.square)], expected)
            << row.square << " in " << row.fen << ", stage " << trace.stage;
    }
}

// The square table, the support, and 4 when no enemy pawn can attack it any more.
TEST(Terms, PawnOutpost) {
    expect_squares(eval_tables, {{"4k3/3p4/8/3P4/2P5/8/8/4K3 w - -", "d5", 12 + 7 + 4, 6 + 7},
                                 {"4k3/4p3/8/3P4/2P5/8/8/4K3 w - -", "d5", 12 + 7, 6 + 7}});
}

TEST(Terms, PiecesAndKings) {
    EvalParams zero;
    for (const Parameter& row : parameters()) {
        if (row.pair) zero.*row.pair = {};
    }
    EvalTables tables{};
    EvalTerms& terms = tables.terms;
    terms = zero;
    terms.knight_outpost.op = 240;
    terms.rook_rank7 = {240, 480};
    terms.rook_open_file = {24, 48};
    terms.rook_trapped.op = -240;
    terms.queen_rank7.en = 240;
    terms.pawn_shield.op = 60;
    terms.pawn_storm.op = -240;
    expect_squares(
        tables,
        {
            {"8/7p/8/4N3/3P4/8/7P/k6K w - -", "e5", 360, 0},  // outpost defended by a pawn
            {"8/7p/8/4N3/P7/8/7P/k6K w - -", "e5", 240, 0},
            {"8/5p2/8/4N3/3P4/8/7P/k6K w - -", "e5", 120, 0},    // f7-f6 is possible, c6 can be had
            {"7k/7p/8/8/8/3n4/8/K7 w - -", "d3", 240 + 6, 6},    // Black's outpost, near the king
            {"N6k/p1P5/8/8/8/8/QQQ5/KQQ5 w - -", "a8", -20, 0},  // no square left
            // Three per square of the file in the enemy half; a king on the back rank.
            {"6k1/3R4/8/8/p7/8/8/4K3 w - -", "d7", 240 + 24 + 9, 480 + 48 + 9},
            {"6k1/p7/8/8/8/8/7P/6KR w - -", "h1", -240, 0},   // shut in by the king
            {"6NQ/6PP/p7/8/8/1k6/8/K7 w - -", "h8", -8, -8},  // far from files a, b and c
            // The castled king's shield of 1 + 3 + 3 + 3, of which 9 are worth nothing.
            {"r1bq1rk1/pppp1ppp/2n2n1b/4p3/4P3/2N2N1B/PPPP1PPP/R1BQ1RK1 w - -", "g1", 6, 0},
            {"r1bq1rk1/pppp1ppp/2n2n1b/4p3/4P3/2N2NPB/PPPP1P1P/R1BQ1RK1 w - -", "g1", 0, 0},
            // Black's f- and g-pawns have come across.
            {"rnkqbbnr/ppppp2p/8/8/5pp1/8/PPPPPPPP/RNBQRBKN w - -", "g1", 6 - 480, 0},
            {"rnbqrbkn/ppppp2p/8/8/5pp1/8/PPPPPPPP/RNBQRBKN w - -", "g1", 6, 0},
        });
}

// Queen h4 and bishop d6 against g1. The zone f1 to h3 has 4 squares attacked, 2 of them twice, 1
// for the bishop, 2 for the queen: 9 in all. Safe checks on c5 and h2 (bishop) and on d4 and g4
// (queen), one of them, h2, beside the king. 46 + 26 + 2 * 32 + 32 + 16 * 9 - 8 * 10 - 15 = 217
// units make entry 27, or 25 when the king's side is to move.
TEST(Terms, AttackOnTheKing) {
    constexpr char TO_MOVE[] = "rnb2rk1/pp1n1ppp/3b4/8/7q/8/P4PPP/6K1 w - -";
    constexpr char WAITING[] = "rnb2rk1/pp1n1ppp/3b4/8/7q/8/P4PPP/6K1 b - -";
    EXPECT_EQ(eval_tables.KingDanger[27], 301 + 18 + 17);  // 470 / 26 and 470 / 27 more
    expect_squares(eval_tables, {{TO_MOVE, "g1", 7 + 6 - 16 + 12 - 301, -35 - 16},
                                 {WAITING, "g1", 7 + 6 - 16 + 12 - 336, -35 - 16}});
    EXPECT_EQ(evaluate_fresh(TO_MOVE).notes.threat[WHITE], 5000);
    EXPECT_EQ(evaluate_fresh(TO_MOVE).notes.threat[BLACK], 0);
}

TEST(Terms, PassedPawnsAndCandidates) {
    struct Case {
        const char* fen;
        int white, black;  // ending values
        int threat_white, threat_black;
    };
    const Case cases[] = {
        // 78 + 36 for the push, 30 for the free way, (24 * 6 - 16 * 7) * 6 / 16 for the kings,
        // 144 / 4 for the won race. The other pawn: 6 + 0 from h7 to h5, (24 * 4 - 16 * 3) * 2
        // / 16.
        {"6k1/7p/P7/8/8/8/8/6K1 w - -", 114 + 30 + 12 + 36, 12, 32, 512},
        // In front stands the king, and the pawn hangs: 78 - 19, (24 * 1 - 16 * 7) * 6 / 16.
        {"8/k6p/P7/8/8/8/8/6K1 w - -", 59 - 33, 6 + (24 * 4 - 16 * 7) * 2 / 16, 100, 0},
        // On the seventh the race is won or lost by the move.
        {"1K6/P6p/2k5/8/8/8/8/8 w - -", 260 + 14 + 65, 11 + 8, 64, 1024},
        {"1K6/P6p/2k5/8/8/8/8/8 b - -", 260 + 14, 11 + 8 + 2, 64, 1024},
        // Side by side: each a quarter of 82 more.
        {"6k1/p7/8/3PP3/8/8/8/6K1 w - -", 95 + 87, 11 + 6, 64, 4 * 128},
        // One defends the other: an eighth of 82 for d5.
        {"6k1/7p/8/3P4/2P5/8/8/6K1 w - -", (82 + 10 - 7) + (42 + 4), 12, 32, 2 * 128 + 2 * 64},
        // Candidates: d6 guards e5, d4 helps.
        {"6k1/8/3p4/8/3PP3/8/8/6K1 w - -", 45 * (32 + 24 * 3) / 256, 0, 0, 0},
    };
    for (const Case& row : cases) {
        const Evaluation e = evaluate_fresh(row.fen);
        ASSERT_EQ(e.trace.stage, 24);
        EXPECT_EQ(e.trace.total[TRACE_PASSERS][WHITE], row.white) << row.fen;
        EXPECT_EQ(e.trace.total[TRACE_PASSERS][BLACK], row.black) << row.fen;
        EXPECT_EQ(e.notes.threat[WHITE], row.threat_white) << row.fen;
        EXPECT_EQ(e.notes.threat[BLACK], row.threat_black) << row.fen;
    }
}

// The reference figures hold no threats, only the squares.
TEST(Terms, ThreatsByHungPieces) {
    const std::tuple<const char*, const char*, int, int> cases[] = {
        {"4k3/8/8/2n5/8/3R4/8/4K3 w - -", "d3", 530, 0},
        {"4k3/8/8/2n5/3P4/8/8/4K3 w - -", "c5", 0, 330},  // more than the push, 64
        {"4k3/8/2n5/8/3P4/8/8/4K3 w - -", "d4", 100, 64},
        {"4k3/8/2n5/8/3P4/4K3/8/8 w - -", "", 0, 64},  // the king defends it
        {"4k3/8/8/4p3/3P4/8/8/4K3 w - -", "", 0, 0},   // pawns on pawns
        {"3rk3/8/8/8/8/3Q4/8/4K3 w - -", "d3", 1060, 0},
    };
    for (const auto& [fen, hung, white, black] : cases) {
        const Evaluation e = evaluate_fresh(fen);
        EXPECT_EQ(square_list(e.trace.hung), hung) << fen;
        EXPECT_EQ(e.notes.threat[WHITE], white) << fen;
        EXPECT_EQ(e.notes.threat[BLACK], black) << fen;
    }
}

}  // namespace
}  // namespace quon::test
