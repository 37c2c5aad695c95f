// Endings that are settled at once, and the factor that pulls scores towards a draw: mostly rare
// material that collections of positions do not hold.

#include "eval/kpk.h"
#include "harness/eval_support.h"

namespace quon::test {
namespace {

TEST(Endgame, MaterialThatDecides) {
    const std::tuple<const char*, int, int> cases[] = {
        {"8/8/4k3/8/8/3K4/8/8 w - -", 0, 1},
        {"8/8/4k3/6b1/8/3K4/8/2B5 w - -", 0, 1},
        {"8/8/1KP5/8/8/8/8/k7 b - -", -800, 0},
        // 4 * (2 * 20 + 2 + 200 - 2 * 3): the corner of the bishop's colour
        {"8/8/8/8/3K4/8/8/k1B1N3 b - -", -944, 0},
        {"K2bn3/8/8/3k4/8/8/8/8 b - -", 4 * (2 * 6 + 2 + 200 - 2 * 3), 0},  // the wrong corner
        // 100 * material + edge - 10 * distance + 200
        {"7R/8/8/8/8/8/8/k1K5 b - -", -(500 + 60 - 20 + 200), 0},
        {"8/8/8/3k4/8/3K4/P1P5/4Q1N1 w - -", 1300 + 0 - 20 + 200, 0},
        {"k5r1/8/8/8/7K/8/8/8 b - -", 500 + 30 - 70 + 200, 0},
    };
    for (const auto& [fen, score, final] : cases) {
        const Evaluation e = evaluate_fresh(fen);
        EXPECT_EQ(e.score, score) << fen;
        EXPECT_EQ(e.notes.eval_final, final) << fen;
    }
}

TEST(Endgame, ScaleFactor) {
    const std::pair<const char*, double> cases[] = {
        // Much material; a clear lead.
        {"8/8/8/3k4/8/p7/8/N3K2N w - -", 0.05},
        {"8/8/2nk4/2b5/8/p7/8/3QK3 w - -", 0.675},
        {"8/8/2nk4/2b5/8/8/8/3QK3 w - -", 0.75},
        // No pawn to win with.
        {"8/8/3k4/8/2n5/8/8/2B1KB2 w - -", 0.9},
        {"8/8/3k4/p7/8/8/8/2B1K3 w - -", 0.05},
        {"8/8/3k4/8/2br4/8/8/R3K2R w - -", 0.25},
        // A pawn each.
        {"1k6/8/PK6/8/8/8/7p/8 w - -", 1.0},
        // Rook pawns and the corner.
        {"8/1k6/8/P7/8/8/3K4/2B5 w - -", 0.06},
        {"8/2k5/8/P7/8/8/3K4/2B5 w - -", 1.0},
        {"1k6/8/8/P7/8/8/3K4/2N5 w - -", 1.0},
        {"5b2/3k4/8/8/p7/8/8/K7 b - -", 1.0},  // f8 is dark, and so is a1
        {"4b3/3k4/8/8/p7/8/8/K7 b - -", 0.06},
        // Bishops of opposite and of the same colour.
        {"8/8/3bk3/8/8/3BP3/4K3/8 w - -", 0.5 * 0.3},
        {"8/pp6/3bk3/8/8/3BPPP1/4K3/8 w - -", 0.45},
    };
    for (const auto& [fen, factor] : cases) {
        EXPECT_NEAR(evaluate_fresh(fen).trace.factor, factor, 1e-12) << fen;
    }
}

TEST(Endgame, ScoresUpTo14AreNotScaled) {
    // A rook each: the tempo makes 9, (16 * 4 + 8 * 20) / 24, and contempt * 2 / 41 moves it on.
    const std::pair<int, int> cases[] = {
        {0, 9}, {103, 14}, {123, 2}, {-471, -13}, {-492, -2}};  // 2.25, -2.25 without fraction
    for (const auto& [contempt, score] : cases) {
        EXPECT_EQ(evaluate_contempt("r3k3/8/8/8/8/8/8/R3K3 w - -", contempt, WHITE), score);
    }
}

// A solver of another make agreed with every answer; what is left of it is a signature of them all.
TEST(Kpk, EveryPosition) {
    u64 signature = 0;
    int wins = 0;         // with the pawn on files a to d
    int differences = 0;  // between the colours
    for (int pawn = 8; pawn < 56; ++pawn) {
        for (int men = 0; men < 64 * 64; ++men) {
            const int king = men % 64, enemy = men / 64;
            if (king == pawn || enemy == pawn || king_distance[king][enemy] < 2) continue;
            for (const int side : {WHITE, BLACK}) {
                if (side == WHITE && has(pawn_attacks[WHITE][pawn], enemy)) continue;
                const int score = kpk_probe({WHITE, pawn, king, enemy, side});
                differences +=
                    kpk_probe({BLACK, 63 - pawn, 63 - king, 63 - enemy, side ^ 1}) != score;
                if (file_of(pawn) < 4) wins += score != 0;
                signature = signature * 31 + u64(score + 1000);
            }
        }
    }
    EXPECT_EQ(differences, 0);
    EXPECT_EQ(wins, 111282);  // the well-known count
    EXPECT_EQ(signature, 1784881397326861120U);
}

}  // namespace
}  // namespace quon::test
