// Bit operations and attack tables against slower methods.

#include "board/bitboard.h"

#include <gtest/gtest.h>

#include "support/board_support.h"

namespace quon::test {
namespace {

// Fold-and-multiply bit scan, and its table.
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
    int table[64];
    std::fill(std::begin(table), std::end(table), -1);
    for (int i = 0; i < 64; ++i) {
        ASSERT_EQ(table[scan_index(bit(i))], -1);
        table[scan_index(bit(i))] = i;
        EXPECT_EQ(lsb_index(bit(i)), i);
    }
    Random random(1);
    for (int i = scaled(100000); i > 0; --i) {
        const Bitboard b = (random() & random()) << pick(random, 64);
        ASSERT_EQ(popcount64(b), popcount32(u32(b)) + popcount32(u32(b >> 32)));
        ASSERT_EQ(more_than_one(b), popcount32(u32(b)) + popcount32(u32(b >> 32)) > 1);
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
            Bitboard occupancy = random();
            for (int thin = pick(random, 4); thin > 0; --thin) occupancy &= random();
            ASSERT_EQ(rook_attacks(square, occupancy), reach_by_steps(ROOK, square, occupancy))
                << square;
            ASSERT_EQ(bishop_attacks(square, occupancy), reach_by_steps(BISHOP, square, occupancy))
                << square;
        }
    }
}

TEST(Bitboard, TablesOfTwoSquares) {
    for (int a = 0; a < 64; ++a) {
        for (int b = 0; b < 64; ++b) {
            const int files = file_of(b) - file_of(a);
            const int ranks = rank_of(b) - rank_of(a);
            const int steps = std::max(std::abs(files), std::abs(ranks));
            Bitboard inside = 0;
            if (files == 0 || ranks == 0 || std::abs(files) == std::abs(ranks)) {
                for (int n = 1; n < steps; ++n) inside |= bit(a + n * ((b - a) / steps));
            }
            ASSERT_EQ(between[a][b], inside) << a << " " << b;
            ASSERT_EQ(king_distance[a][b], steps);
            const int shape = std::abs(files) * std::abs(ranks);
            ASSERT_EQ(has(knight_attacks[a], b), shape == 2);
            ASSERT_EQ(has(king_attacks[a], b), steps == 1);
            ASSERT_EQ(has(pawn_attacks[WHITE][a], b), shape == 1 && ranks == 1);
            ASSERT_EQ(has(pawn_attacks[BLACK][a], b), shape == 1 && ranks == -1);
        }
    }
}

TEST(Bitboard, SetOperations) {
    Random random(3);
    for (int i = scaled(2000); i > 0; --i) {
        const Bitboard set = random() & random();
        Bitboard attacks[2] = {0, 0};
        Bitboard ahead[2] = {set, set};
        for (int square = 0; square < 64; ++square) {
            if (!has(set, square)) continue;
            attacks[WHITE] |= pawn_attacks[WHITE][square];
            attacks[BLACK] |= pawn_attacks[BLACK][square];
            for (int to = square + 8; to < 64; to += 8) ahead[WHITE] |= bit(to);
            for (int to = square - 8; to >= 0; to -= 8) ahead[BLACK] |= bit(to);
        }
        ASSERT_EQ(pawn_set_attacks<WHITE>(set), attacks[WHITE]);
        ASSERT_EQ(pawn_set_attacks<BLACK>(set), attacks[BLACK]);
        ASSERT_EQ(fill_forward<WHITE>(set), ahead[WHITE]);
        ASSERT_EQ(fill_forward<BLACK>(set), ahead[BLACK]);
    }
}

TEST(SquareAttacked, AgreesWithSteppingOverTheBoard) {
    visit_random_positions(scaled(1000), 4, [](Game& game) {
        const Position& p = game.position;
        for (int square = 0; square < 64; ++square) {
            for (const int by : {WHITE, BLACK}) {
                ASSERT_EQ(square_attacked(p, square, by), attackers_by_steps(p, square, by) != 0);
            }
        }
    });
}

TEST(SquareAttacked, OccupancyOpensAndClosesLines) {
    const auto game = make_game("4k3/8/8/8/4P3/8/8/K3R3 w - -");
    const Position& p = game->position;
    constexpr int e4 = 28;
    EXPECT_FALSE(square_attacked(p, E8, WHITE));
    EXPECT_TRUE(square_attacked(p, E8, WHITE, occupied(p) & ~bit(e4)));
    EXPECT_FALSE(square_attacked(p, E8, WHITE, occupied(p) & ~bit(e4) & ~bit(E1)));
    EXPECT_FALSE(square_attacked(p, e4, WHITE, occupied(p) | bit(e4 - 8)));
}

}  // namespace
}  // namespace quon::test
