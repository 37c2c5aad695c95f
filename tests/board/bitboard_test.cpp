// Bit operations and attack tables against slower methods.

#include "board/bitboard.h"

#include <gtest/gtest.h>

#include "harness/board_support.h"

namespace quon::test {
namespace {

// Fold-and-multiply bit scan.
u32 scan_index(Bitboard b) {
    const Bitboard low = b ^ (b - 1);
    return (u32(low) ^ u32(low >> 32)) * 0x783A9B23U >> 26;
}

int popcount32(u32 v) {
    v -= v >> 1 & 0x55555555U;
    v = (v & 0x33333333U) + (v >> 2 & 0x33333333U);
    v = (v + (v >> 4)) & 0x0F0F0F0FU;
    return int(v * 0x01010101U >> 24);
}

TEST(Bitboard, ScanAndCount) {
    std::vector<int> table(64, -1);
    for (int i = 0; i < 64; ++i) {
        ASSERT_EQ(table[scan_index(bit(i))], -1);
        table[scan_index(bit(i))] = i;
        EXPECT_EQ(lsb_index(bit(i)), i);
    }
    Random random(1);
    for (int i = scaled(100000); i > 0; --i) {
        const Bitboard b = (random() & random()) << pick(random, 64);
        const int count = popcount32(u32(b)) + popcount32(u32(b >> 32));
        ASSERT_EQ(popcount64(b), count);
        ASSERT_EQ(more_than_one(b), count > 1);
        if (b) {
            ASSERT_EQ(lsb_index(b), table[scan_index(b)]);
        }
    }
}

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
