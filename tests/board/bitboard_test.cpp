// Attack tables against slower methods.

#include "board/bitboard.h"

#include <gtest/gtest.h>

#include "harness/board_support.h"

namespace quon::test {
namespace {

TEST(Bitboard, SlidersStopAtTheFirstBlocker) {
    Random random(2);
    for (int square = 0; square < 64; ++square) {
        ASSERT_EQ(orth_lines[square], reach_by_steps(ROOK, square, 0));
        ASSERT_EQ(diag_lines[square], reach_by_steps(BISHOP, square, 0));
        for (int i = scaled(1000); i > 0; --i) {
            Bitboard men = random();
            for (int thin = pick(random, 4); thin > 0; --thin) men &= random();
            ASSERT_EQ(rook_attacks(square, men), reach_by_steps(ROOK, square, men)) << square;
            ASSERT_EQ(bishop_attacks(square, men), reach_by_steps(BISHOP, square, men)) << square;
        }
    }
}

TEST(Bitboard, TablesOfTwoSquares) {
    for (int a = 0; a < 64; ++a) {
        for (int b = 0; b < 64; ++b) {
            const int files = file_of(b) - file_of(a);
            const int ranks = rank_of(b) - rank_of(a);
            const int steps = std::max(std::abs(files), std::abs(ranks));
            const int shape = std::abs(files * ranks);
            Bitboard inside = 0;
            if (files == 0 || ranks == 0 || std::abs(files) == std::abs(ranks)) {
                for (int n = 1; n < steps; ++n) inside |= bit(a + n * ((b - a) / steps));
            }
            ASSERT_EQ(between[a][b], inside) << a << " " << b;
            ASSERT_EQ(king_distance[a][b], steps);
            ASSERT_EQ(has(knight_attacks[a], b), shape == 2);
            ASSERT_EQ(has(king_attacks[a], b), steps == 1);
            ASSERT_EQ(has(pawn_attacks[WHITE][a], b), shape == 1 && ranks == 1);
            ASSERT_EQ(has(pawn_attacks[BLACK][a], b), shape == 1 && ranks == -1);
        }
    }
}

TEST(Bitboard, SquareAttacked) {
    visit_random_positions(scaled(1000), 4, [](Game& game) {
        const Position& p = game.position;
        for (int square = 0; square < 64; ++square) {
            for (const int by : {WHITE, BLACK}) {
                ASSERT_EQ(square_attacked(p, square, by), attackers_by_steps(p, square, by) != 0);
            }
        }
    });
}

}  // namespace
}  // namespace quon::test
