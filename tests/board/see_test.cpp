// The exchange value against a plain recursion on a copied board.

#include "board/see.h"

#include <gtest/gtest.h>

#include "board/fen.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

constexpr int VALUE[] = {0, 100, 330, 330, 530, 1060, 10000};

int cheapest(const Position& p, int side, int to, Bitboard occupancy) {
    const auto& own = p.bb[side];
    const Bitboard lines[] = {0,
                              pawn_attacks[side ^ 1][to],
                              knight_attacks[to],
                              diag_lines[to],
                              orth_lines[to],
                              diag_lines[to] | orth_lines[to],
                              king_attacks[to]};
    for (int type = PAWN; type <= KING; ++type) {
        const bool slides = type == BISHOP || type == ROOK || type == QUEEN;
        for (int square = 0; square < 64; ++square) {
            if (!has(own[type] & lines[type], square)) continue;
            if (!slides || (between[square][to] & occupancy) == 0) return square;
        }
    }
    return NO_SQUARE;
}

int exchange(Position& p, int side, int from, int to, Bitboard occupancy, bool stand_pat) {
    if (from == NO_SQUARE) from = cheapest(p, side, to, occupancy);
    if (from == NO_SQUARE) return 0;
    const u8 taken = p.board[to];
    const u8 taker = p.board[from];
    if (type_of(taken) == KING) return 9999;
    p.board[to] = taker;
    p.board[from] = 0;
    p.bb[side][type_of(taker)] ^= bit(from);
    const int reply = exchange(p, side ^ 1, NO_SQUARE, to, occupancy & ~bit(from), true);
    p.bb[side][type_of(taker)] ^= bit(from);
    p.board[from] = taker;
    p.board[to] = taken;
    const int gain = VALUE[type_of(taken)] - reply;
    return stand_pat && gain < 0 ? 0 : gain;
}

TEST(See, EveryExchangeOfRandomPositions) {
    visit_random_positions(scaled(2500), 31, [](Game& game) {
        const Position& p = game.position;
        Position scratch = p;
        for (const int side : {WHITE, BLACK}) {
            for (int from = 0; from <= NO_SQUARE; ++from) {
                if (from != NO_SQUARE && !has(p.bb[side][0], from)) continue;
                for (int to = 0; to < 64; ++to) {
                    if (to == from) continue;
                    ASSERT_EQ(see(p, side, from, to),
                              exchange(scratch, side, from, to, occupied(p), false))
                        << position_to_fen(p) << " side " << side << " from " << from << " to "
                        << to;
                }
            }
        }
    });
}

TEST(See, KnownExchanges) {
    struct Case {
        const char* fen;
        int side;
        const char* from;  // empty: the least valuable attacker
        const char* to;
        int value;
    };
    const Case cases[] = {
        {"4k3/8/8/3n4/4P3/8/8/4K3 w - -", WHITE, "e4", "d5", 330},
        {"4k3/8/4p3/3p4/8/8/8/3QK3 w - -", WHITE, "d1", "d5", 100 - 1060},
        {"r2q4/8/7k/8/8/8/R7/R3K3 w - -", WHITE, "a2", "a8", 530},  // the second rook is behind
        {"4k3/8/8/8/8/8/8/4K2R w K -", WHITE, "", "e8", 0},
        {"4k3/8/8/8/8/8/8/K3R3 w - -", WHITE, "", "e8", 9999},
        {"4k3/8/3p4/4p3/4K3/8/8/8 w - -", WHITE, "e4", "e5", 100 - 9999},
        {"6k1/7p/6p1/8/8/8/6R1/K5R1 w - -", WHITE, "g2", "g6", 100 - 530 + 100},
        {"4k3/8/8/3p4/8/4N3/8/4K3 w - -", WHITE, "e3", "f5", 0},  // a quiet move to a safe square
        {"4k3/8/4p3/8/8/4N3/8/4K3 w - -", WHITE, "e3", "f5", -330},
        {"4k3/8/8/8/8/8/8/4K3 w - -", BLACK, "", "a1", 0},
        {"3r3k/8/8/3r4/8/3P4/3Q4/3K4 b - -", BLACK, "d5", "d3", 100},
    };
    for (const Case& row : cases) {
        const auto game = make_game(row.fen);
        const auto square = [](const char* name) {
            return *name ? make_square(name[0] - 'a', name[1] - '1') : NO_SQUARE;
        };
        EXPECT_EQ(see(game->position, row.side, square(row.from), square(row.to)), row.value)
            << row.fen;
    }
}

}  // namespace
}  // namespace quon::test
