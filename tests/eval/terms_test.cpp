// Pieces, kings, passed pawns and threats in positions made for them, with figures worked out by
// hand.

#include <gtest/gtest.h>

#include "support/board_support.h"
#include "support/eval_support.h"

namespace quon::test {
namespace {

struct SquareCase {
    const char* fen;
    const char* square;
    int op, en;  // what stands on the square is worth
};

int square_of(const char* name) { return make_square(name[0] - 'a', name[1] - '1'); }

// The cases hold for the given tables at each position's own stage.
void expect_squares(const std::vector<SquareCase>& cases, const EvalTables& tables) {
    for (const SquareCase& row : cases) {
        const EvalTrace trace = evaluate_fresh(row.fen, tables).trace;
        const int expected = (row.op * (24 - trace.stage) + row.en * trace.stage) / 24;
        EXPECT_EQ(trace.square[square_of(row.square)], expected)
            << row.square << " in " << row.fen << ", stage " << trace.stage;
    }
}

TEST(PieceTerms, Knights) {
    EvalTables tables{};
    tables.knight_outpost = 240;
    expect_squares(
        {
            {"8/7p/8/4N3/3P4/8/7P/k6K w - -", "e5", 360, 0},  // outpost defended by a pawn
            {"8/7p/8/4N3/P7/8/7P/k6K w - -", "e5", 240, 0},
            {"8/5p2/8/4N3/3P4/8/7P/k6K w - -", "e5", 120, 0},  // f7-f6 is possible, c6 can be had
            {"7k/7p/8/8/P7/3N4/7P/K7 w - -", "d3", 120, 0},
            {"7k/7p/8/8/8/3n4/8/K7 w - -", "d3", 240 + 6, 6},  // Black's outpost, near the king
            {"7k/7p/8/4N3/8/8/8/K7 w - -", "e5", 240 + 6, 6},  // near the king
            {"N6k/p1P5/8/8/8/8/8/K7 w - -", "a8", -20, 0},     // no square left
            {"7k/8/8/8/8/8/p1p5/n6K w - -", "a1", 120, 0},     // b3 is open
            {"8/pppp4/8/8/8/4N3/PPPPP3/k6K w - -", "e3", 120 + 6, 6 + 4},  // nine pawns; f5
        },
        tables);
}

TEST(PieceTerms, Bishops) {
    expect_squares(
        {
            {"7k/p7/8/8/8/8/1B6/6K1 w - -", "b2", 16 + 0, 16},        // c3 to f6
            {"7k/p7/8/3p4/3P4/8/1B6/6K1 w - -", "b2", 8 - 4, 8 - 8},  // d4 is blocked and dark
            {"7k/p7/8/4p3/4P3/8/1B6/6K1 w - -", "b2", 12, 12},        // e4 is light
            {"7k/p7/8/8/8/2Q5/1B6/6K1 w - -", "b2", 16, 16},          // through the queen
            {"k7/7p/8/4B3/8/8/8/6K1 w - -", "e5", 20 + 12, 20},       // outpost
            {"k7/5p2/8/4B3/8/8/8/6K1 w - -", "e5", 20, 20},
            {"B6k/1P6/8/8/8/7p/8/K7 w - -", "a8", -20, 0},
        },
        EvalTables{});
}

TEST(PieceTerms, Rooks) {
    EvalTables tables{};
    tables.rook_rank7 = {240, 480};
    tables.rook_open_file = {24, 48};
    tables.rook_half_open_file = {72, 96};
    tables.rook_trapped = -240;
    expect_squares(
        {
            // Three per square of the file in the enemy half.
            {"6k1/3R4/8/8/p7/8/8/4K3 w - -", "d7", 240 + 24 + 9, 480 + 48 + 9},
            {"8/3R4/6k1/8/p7/8/8/4K3 w - -", "d7", 24 + 9, 48 + 9},  // no target on the back ranks
            {"8/p2R4/6k1/8/8/8/8/4K3 w - -", "d7", 240 + 24 + 9, 480 + 48 + 9},
            {"8/3R4/6k1/8/3p4/8/8/4K3 w - -", "d7", 72 + 9, 96 + 9},
            {"8/3R4/6k1/8/p7/8/3P4/4K3 w - -", "d7", 9, 9},
            {"4k3/8/8/8/P7/8/3r4/6K1 w - -", "d2", 240 + 24 + 9, 480 + 48 + 9},
            // Shut in by king or pawn.
            {"6k1/p7/8/8/8/8/7P/6KR w - -", "h1", -240, 0},
            {"6k1/p7/8/8/8/8/7P/5K1R w - -", "h1", -240, 0},
            {"6k1/p7/8/8/8/8/7P/4K2R w - -", "h1", 0, 0},
            {"6k1/p7/8/8/8/8/6P1/6RK w - -", "g1", 0, 0},
            {"6k1/8/p7/8/8/RP6/P7/6K1 w - -", "a3", 6 - 240, 6},
            {"6k1/7p/8/P7/8/8/8/R1K5 w - -", "a1", 3 - 240, 3},  // four squares
            {"6k1/7p/P7/8/8/8/8/R1K5 w - -", "a1", 6, 6},        // five
                                                                 // Through the queen.
            {"6k1/7p/8/8/3Q4/8/8/3RK3 w - -", "d1", 24 + 12, 48 + 12},
        },
        tables);
}

TEST(PieceTerms, Queens) {
    EvalTables tables{};
    tables.queen_rank7 = 240;
    expect_squares(
        {
            {"6k1/3Q4/8/8/p7/8/8/4K3 w - -", "d7", 0, 240},
            {"8/3Q4/6k1/8/p7/8/8/4K3 w - -", "d7", 0, 0},
            {"6NQ/6PP/p7/8/8/1k6/8/K7 w - -", "h8", -8, -8},  // far from files a, b and c
            {"6NQ/6PP/p7/8/8/6k1/8/K7 w - -", "h8", 0, 0},
        },
        tables);
}

TEST(KingTerms, ShieldOfTheCastledKing) {
    EvalTables tables{};
    tables.pawn_shield = 60;
    expect_squares(
        {
            // 1 + 3 + 3 + 3, of which 9 are worth nothing; all pieces are on the board.
            {"r1bq1rk1/pppp1ppp/2n2n1b/4p3/4P3/2N2N1B/PPPP1PPP/R1BQ1RK1 w - -", "g1", 6, 0},
            {"r1bq1rk1/pppp1ppp/2n2n1b/4p3/4P3/2N2N1B/PPPP1PPP/R1BQ1RK1 w - -", "g8", 6, 0},
            {"r1bq1rk1/pppp1ppp/2n2n1b/4p3/4P3/2N2NPB/PPPP1P1P/R1BQ1RK1 w - -", "g1", 0, 0},
            {"r1bq1rk1/pppp1ppp/2n2n1b/4p3/4P1P1/2N2N1B/PPPP1P1P/R1BQ1RK1 w - -", "g1", -6, 0},
        },
        tables);
}

TEST(KingTerms, StormOfPawnsAgainstTheOtherWing) {
    EvalTables tables{};
    tables.pawn_storm = -240;
    expect_squares(
        {
            // Black's f- and g-pawns have come across; all pieces are on the board.
            {"rnkqbbnr/ppppp2p/8/8/5pp1/8/PPPPPPPP/RNBQRBKN w - -", "g1", -480, 0},
            {"rnbqrbkn/ppppp2p/8/8/5pp1/8/PPPPPPPP/RNBQRBKN w - -", "g1", 0, 0},
        },
        tables);
}

TEST(KingTerms, HalvedWithoutAnEnemyQueen) {
    EvalTables tables{};
    for (Pair& entry : tables.pst[KING]) entry = {240, 0};
    expect_squares(
        {
            {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w - -", "e1", 240, 0},
            {"rnb1kbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w - -", "e1", 120, 0},
            {"rnb1kbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w - -", "e8", 240, 0},
        },
        tables);
}

// Queen h4 and bishop d6 against g1. The zone f1 to h3 has 4 squares attacked, 2 of them twice, 1
// for the bishop, 2 for the queen: 9 in all. Safe checks on c5 and h2 (bishop) and on d4 and g4
// (queen), one of them, h2, beside the king. 46 + 26 + 2 * 32 + 32 + 16 * 9 - 8 * 10 - 15 = 217
// units make entry 27, or 25 when the king's side is to move.
TEST(KingTerms, Attack) {
    const std::vector<SquareCase> to_move = {
        {"rnb2rk1/pp1n1ppp/3b4/8/7q/8/P4PPP/6K1 w - -", "g1", 7 + 6 - 16 + 12 - 301, -35 - 16}};
    const std::vector<SquareCase> waiting = {
        {"rnb2rk1/pp1n1ppp/3b4/8/7q/8/P4PPP/6K1 b - -", "g1", 7 + 6 - 16 + 12 - 336, -35 - 16}};
    EXPECT_EQ(eval_tables.KingDanger[27], 301 + 18 + 17);  // 470 / 26 and 470 / 27 more
    expect_squares(to_move, eval_tables);
    expect_squares(waiting, eval_tables);
    EXPECT_EQ(evaluate_fresh(to_move[0].fen).notes.threat[WHITE], 5000);
    EXPECT_EQ(evaluate_fresh(to_move[0].fen).notes.threat[BLACK], 0);
}

TEST(KingTerms, Ending) {
    expect_squares(
        {
            {"8/6kp/8/8/3K4/8/P7/8 w - -", "d4", 0, 10 + 8},
            {"8/8/8/3ppk2/8/3P4/8/K7 w - -", "a1", 0, -50 - 30},      // three files from the pawns
            {"7k/8/8/4P3/8/2p5/8/K7 w - -", "a1", 0, -50 - 20 - 10},  // and no way to b2
            {"7k/8/8/4P3/8/2p5/8/K7 w - -", "h8", 0, -50 - 30},
        },
        eval_tables);
}

TEST(PassedPawns, Values) {
    struct Case {
        const char* fen;
        int white, black;  // ending values
        int threat_white, threat_black;
    };
    const Case cases[] = {
        // 78 + 36 for the push, 30 for the free way, (24 * 6 - 16 * 7) * 6 / 16 for the kings, 144
        // / 4
        // for the won race. The other pawn: 6 + 0 from h7 to h5, (24 * 4 - 16 * 3) * 2 / 16.
        {"6k1/7p/P7/8/8/8/8/6K1 w - -", 114 + 30 + 12 + 36, 12, 32, 512},
        // In front stands the king, and the pawn hangs: 78 - 19, (24 * 1 - 16 * 7) * 6 / 16.
        {"8/k6p/P7/8/8/8/8/6K1 w - -", 59 - 33, 6 + (24 * 4 - 16 * 7) * 2 / 16, 100, 0},
        // Behind an own pawn a third; the first one as above.
        {"6k1/7p/P7/P7/8/8/8/6K1 w - -", 192 + 12, 12, 32, 512},
        // On the seventh the race is won or lost by the move.
        {"1K6/P6p/2k5/8/8/8/8/8 w - -", 260 + 14 + 65, 11 + 8, 64, 1024},
        {"1K6/P6p/2k5/8/8/8/8/8 b - -", 260 + 14, 11 + 8 + 2, 64, 1024},
        // Side by side: each a quarter of 82 more.
        {"6k1/p7/8/3PP3/8/8/8/6K1 w - -", 95 + 87, 11 + 6, 64, 4 * 128},
        // One defends the other: an eighth of 82 for d5.
        {"6k1/7p/8/3P4/2P5/8/8/6K1 w - -", (82 + 10 - 7) + (42 + 4), 12, 32, 2 * 128 + 2 * 64},
        // Its king sees it through.
        {"8/p5k1/3K4/4P3/8/8/8/8 w - -", 82 + 10 + 20, 11 - 3, 64, 256},
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

TEST(PassedPawns, Candidates) {
    struct Case {
        const char* fen;
        int white, black;
    };
    const Case cases[] = {
        {"6k1/8/3p4/8/3PP3/8/8/6K1 w - -", 45 * (32 + 24 * 3) / 256, 0},
        {"8/8/3p4/4k3/3PP3/8/8/6K1 b - -", 0, 0},  // the king stands in front
        {"6k1/8/8/3p4/4P3/8/8/6K1 w - -", 45 * (32 + 24 * 3) / 256, 45 * (32 + 24 * 3) / 256},
    };
    for (const Case& row : cases) {
        const EvalTrace trace = evaluate_fresh(row.fen).trace;
        EXPECT_EQ(trace.total[TRACE_PASSERS][WHITE], row.white) << row.fen;
        EXPECT_EQ(trace.total[TRACE_PASSERS][BLACK], row.black) << row.fen;
    }
}

TEST(Threats, HungAndPinnedPieces) {
    struct Case {
        const char* fen;
        const char* hung;
        const char* pinned;
        int threat_white, threat_black;
    };
    const Case cases[] = {
        {"4k3/8/8/2n5/8/3R4/8/4K3 w - -", "d3", "", 530, 0},
        {"4k3/8/8/2n5/3P4/8/8/4K3 w - -", "c5", "", 0, 330},    // more than the push, 64
        {"4k3/3p4/2n5/3P4/8/8/8/4K3 w - -", "c6", "", 0, 330},  // defended or not
        {"4k3/8/2n5/8/3P4/8/8/4K3 w - -", "d4", "", 100, 64},
        {"4k3/8/2n5/8/3P4/4K3/8/8 w - -", "", "", 0, 64},  // the king defends it
        {"4k3/8/8/4p3/3P4/8/8/4K3 w - -", "", "", 0, 0},   // pawns on pawns
        {"4k3/8/8/8/1b6/8/3R4/4K3 w - -", "d2", "d2", 530, 0},
        {"4k3/7p/8/8/1b6/8/3B3P/4K3 w - -", "b4", "d2", 0, 330},
        {"3rk3/8/8/8/8/3Q4/8/4K3 w - -", "d3", "", 1060, 0},
        {"4r1k1/8/8/8/4N3/8/8/4K3 w - -", "e4", "e4", 330, 0},
        {"4r1k1/8/8/8/4Q3/8/8/4K3 w - -", "e4", "e4", 1060, 0},
        {"4r1k1/8/4p3/8/4P3/8/8/4K1N1 w - -", "", "", 0, 0},  // two in between, and pawns
        {"4r1k1/8/8/8/4n3/8/8/4KN2 w - -", "", "", 0, 0},     // the enemy's own piece
        {"6k1/1b6/8/3N4/8/5Q2/8/K7 w - -", "", "d5", 0, 0},   // before a lone queen
        {"6k1/1b6/8/3N4/8/5Q2/Q7/K7 w - -", "", "", 0, 0},
        {"6k1/3r4/8/3N4/8/3Q4/8/K7 w - -", "", "d5", 0, 0},
        {"6k1/3q4/8/3N4/8/3Q4/8/K7 w - -", "", "", 0, 0},  // queens do not pin to the queen
    };
    for (const Case& row : cases) {
        const Evaluation e = evaluate_fresh(row.fen);
        EXPECT_EQ(square_list(e.trace.hung), row.hung) << row.fen;
        EXPECT_EQ(square_list(e.trace.pinned), row.pinned) << row.fen;
        EXPECT_EQ(e.notes.threat[WHITE], row.threat_white) << row.fen;
        EXPECT_EQ(e.notes.threat[BLACK], row.threat_black) << row.fen;
    }
}

// What the terms without a place on the board add to White's sum, with tables that hold nothing
// else.
TEST(PositionalSum, TermsOfWholeSides) {
    EvalTables tables{};
    tables.hung = {-240, -240};
    struct Case {
        const char* fen;
        int stage, op, en;  // the tempo is 14 and 7
    };
    const Case cases[] = {
        // Three hung rooks, the second costs 15 more and the third 30; their files give 12, 12
        // and 9.
        {"4k3/1R6/8/2n5/R7/3R4/8/4K3 w - -", 17, 33 - 3 * 240 - 45 + 14, 33 - 3 * 240 - 45 + 7},
        // A pawn attacked and defended by pieces only. The king stands 10 beside it, on a rank
        // worth 4.
        {"4k3/8/2n5/8/3P4/4K3/8/8 w - -", 23, 14 - 3, 7 - 12 - 10 + 4},
        // d2 cannot move; the kings' distance from d4 is worth 3 and 6.
        {"4k3/7p/8/8/8/3N4/3P4/4K3 b - -", 23, -2 - 12 + 3, -2 - 12 + 6},
    };
    for (const Case& row : cases) {
        const EvalTrace trace = evaluate_fresh(row.fen, tables).trace;
        ASSERT_EQ(trace.stage, row.stage) << row.fen;
        EXPECT_EQ(trace.total[TRACE_POSITIONAL][WHITE],
                  (row.op * (24 - row.stage) + row.en * row.stage) / 24)
            << row.fen;
    }
}

}  // namespace
}  // namespace quon::test
