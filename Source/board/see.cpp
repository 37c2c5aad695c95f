// The exchange is played forward with the material balance kept per capture, then folded back:
// each side takes the better of capturing and stopping.

#include "board/see.h"

#include <algorithm>
#include <cassert>

namespace quon {

namespace {

struct Exchange {
    const Position& p;
    int to;
    Bitboard occupancy;
    Bitboard attackers;  // of `to`, both colours, as far as the occupancy shows them
    Bitboard diagonal;   // sliders of both colours
    Bitboard straight;
};

Exchange start_exchange(const Position& p, int to) {
    const auto& white = p.bb[WHITE];
    const auto& black = p.bb[BLACK];
    const Bitboard diagonal = white[BISHOP] | white[QUEEN] | black[BISHOP] | black[QUEEN];
    const Bitboard straight = white[ROOK] | white[QUEEN] | black[ROOK] | black[QUEEN];
    const Bitboard occupancy = occupied(p);
    Bitboard attackers =
        (pawn_attacks[BLACK][to] & white[PAWN]) | (pawn_attacks[WHITE][to] & black[PAWN]);
    attackers |= knight_attacks[to] & (white[KNIGHT] | black[KNIGHT]);
    attackers |= king_attacks[to] & (white[KING] | black[KING]);
    if (diag_lines[to] & diagonal) attackers |= bishop_attacks(to, occupancy) & diagonal;
    if (orth_lines[to] & straight) attackers |= rook_attacks(to, occupancy) & straight;
    return {p, to, occupancy, attackers, diagonal, straight};
}

// Lowest square of the least valuable attacker of the side, NO_SQUARE if none.
int least_attacker(const Exchange& x, int side) {
    const Bitboard own = x.attackers & x.p.bb[side][0];
    if (!own) return NO_SQUARE;
    for (int type = PAWN; type < KING; ++type) {
        const Bitboard candidates = own & x.p.bb[side][type];
        if (candidates) return lsb_index(candidates);
    }
    return lsb_index(own);
}

// Takes the capturer off its square; sliders behind it see `to` now.
void lift(Exchange& x, int from) {
    x.occupancy &= ~bit(from);
    if (has(diag_lines[x.to], from)) x.attackers |= bishop_attacks(x.to, x.occupancy) & x.diagonal;
    if (has(orth_lines[x.to], from)) x.attackers |= rook_attacks(x.to, x.occupancy) & x.straight;
    x.attackers &= x.occupancy;
}

}  // namespace

int see(const Position& p, int side, int from, int to) {
    assert(from == NO_SQUARE || color_of(p.board[from]) == side);
    Exchange x = start_exchange(p, to);
    if (from == NO_SQUARE) from = least_attacker(x, side);
    if (from == NO_SQUARE) return 0;

    // won[n]: what the n-th capture takes. An exchange never has more captures than pieces.
    int won[64];
    int captures = 0;
    int victim = type_of(p.board[to]);
    int reply = 0;  // value of the position after the last capture, for the side to capture then
    while (from != NO_SQUARE) {
        if (victim == KING) {
            reply = SEE_KING_CAPTURE;
            break;
        }
        won[captures++] = SEE_VALUE[victim];
        victim = type_of(p.board[from]);
        lift(x, from);
        side ^= 1;
        from = least_attacker(x, side);
    }
    if (captures == 0) return reply;
    while (--captures > 0) reply = std::max(0, won[captures] - reply);
    return won[0] - reply;
}

}  // namespace quon
