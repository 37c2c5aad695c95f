// The exchange value against a plain recursion.

#include "board/see.h"

#include <gtest/gtest.h>

#include "board/fen.h"
#include "harness/board_support.h"

namespace quon::test {
namespace {

constexpr int VALUE[] = {0, 100, 330, 330, 530, 1060, 10000};

// `p` is a scratch board of which only `board` and `bb` by type follow the exchange.
int exchange(Position& p, int side, int from, int to, Bitboard occupancy, bool stand_pat) {
    const Bitboard diagonal = bishop_attacks(to, occupancy);
    const Bitboard straight = rook_attacks(to, occupancy);
    const Bitboard reach[] = {0,        pawn_attacks[side ^ 1][to], knight_attacks[to], diagonal,
                              straight, diagonal | straight,        king_attacks[to]};
    for (int type = PAWN; type <= KING && from == NO_SQUARE; ++type) {
        const Bitboard attackers = p.bb[side][type] & reach[type];
        if (attackers) from = lsb_index(attackers);
    }
    if (from == NO_SQUARE) return 0;
    const u8 taken = p.board[to];
    const u8 taker = p.board[from];
    if (type_of(taken) == KING) return 9999;
    p.board[to] = taker;
    p.bb[side][type_of(taker)] ^= bit(from);
    const int reply = exchange(p, side ^ 1, NO_SQUARE, to, occupancy & ~bit(from), true);
    p.bb[side][type_of(taker)] ^= bit(from);
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
                        << position_to_fen(p) << " " << side << " " << from << " " << to;
                }
            }
        }
    });
}

}  // namespace
}  // namespace quon::test
