// The three generators.

#include "board/movegen.h"

#include <cassert>

namespace quon {

namespace {

MoveEntry* add(MoveEntry* out, int from, int to, int piece, int captured, Move promotion = 0) {
    *out = {make_code(from, to, promotion), 0, u8(piece), u8(captured)};
    return out + 1;
}

MoveEntry* add_targets(const Position& p, MoveEntry* out, int from, int piece, Bitboard targets) {
    while (targets) {
        const int to = pop_square(targets);
        out = add(out, from, to, piece, p.board[to]);
    }
    return out;
}

// Knights, bishops, rooks, queens and the king, to the wanted squares.
template <int Us>
MoveEntry* gen_pieces(const Position& p, Bitboard wanted, MoveEntry* out) {
    const Bitboard occupancy = occupied(p);
    for (int type = KNIGHT; type <= KING; ++type) {
        const int piece = make_piece(Us, type);
        for (const u8* square = p.plist[piece].begin(); *square != NO_SQUARE; ++square) {
            out = add_targets(p, out, *square, piece,
                              attacks_from(type, *square, occupancy) & wanted);
        }
    }
    return out;
}

template <int Us>
MoveEntry* gen_pawn_captures(const Position& p, Bitboard attacked, int step, MoveEntry* out) {
    while (attacked) {
        const int to = pop_square(attacked);
        out = add(out, to - step, to, make_piece(Us, PAWN), p.board[to]);
    }
    return out;
}

template <int Us>
MoveEntry* gen_captures_of(const Position& p, MoveEntry* out) {
    const Bitboard enemies = p.bb[Us ^ 1][0];
    const Bitboard last_rank = relative_rank_mask(Us, 7);
    const Bitboard ep = p.ep == NO_SQUARE ? 0 : bit(p.ep);
    const Bitboard targets = (enemies | ep) & ~last_rank;
    const Bitboard ahead = shift_forward<Us>(p.bb[Us][PAWN]);
    out = gen_pawn_captures<Us>(p, shift_west(ahead) & targets, forward(Us) - 1, out);
    out = gen_pawn_captures<Us>(p, shift_east(ahead) & targets, forward(Us) + 1, out);
    return gen_pieces<Us>(p, enemies, out);
}

MoveEntry* add_promotions(MoveEntry* out, int from, int to, int pawn, int captured, bool all_four) {
    out = add(out, from, to, pawn, captured, PROMOTE_QUEEN);
    if (!all_four) return out;
    for (const Move promotion : {PROMOTE_KNIGHT, PROMOTE_BISHOP, PROMOTE_ROOK}) {
        out = add(out, from, to, pawn, captured, promotion);
    }
    return out;
}

template <int Us>
MoveEntry* gen_promotions_of(const Position& p, bool all_four, MoveEntry* out) {
    constexpr int pawn = make_piece(Us, PAWN);
    const Bitboard enemies = p.bb[Us ^ 1][0];
    Bitboard pawns = p.bb[Us][PAWN] & relative_rank_mask(Us, 6);
    while (pawns) {
        const int from = pop_square(pawns);
        const int ahead = from + forward(Us);
        if (p.board[ahead] == 0) out = add_promotions(out, from, ahead, pawn, 0, all_four);
        Bitboard captures = pawn_attacks[Us][from] & enemies;
        while (captures) {
            const int to = pop_square(captures);
            out = add_promotions(out, from, to, pawn, p.board[to], all_four);
        }
    }
    return out;
}

template <int Us>
MoveEntry* gen_castling(const Position& p, MoveEntry* out) {
    for (const bool king_side : {true, false}) {
        if (!castling_possible(p, king_side)) continue;
        const Castling& c = castling(Us, king_side);
        out = add(out, c.king_from, c.king_to, make_piece(Us, KING), 0);
    }
    return out;
}

template <int Us>
MoveEntry* gen_quiets_of(const Position& p, MoveEntry* out) {
    constexpr int pawn = make_piece(Us, PAWN);
    const Bitboard empty = ~occupied(p);
    // Each pawn's single push is followed by its double push.
    const Bitboard ahead_empty = Us == WHITE ? empty >> 8 : empty << 8;
    const Bitboard two_ahead_empty = Us == WHITE ? empty >> 16 : empty << 16;
    const Bitboard double_start = relative_rank_mask(Us, 1) & two_ahead_empty;
    Bitboard pawns = p.bb[Us][PAWN] & ahead_empty & ~relative_rank_mask(Us, 6);
    while (pawns) {
        const int from = pop_square(pawns);
        out = add(out, from, from + forward(Us), pawn, 0);
        if (has(double_start, from)) out = add(out, from, from + 2 * forward(Us), pawn, 0);
    }
    out = gen_pieces<Us>(p, empty, out);
    return gen_castling<Us>(p, out);
}

}  // namespace

bool castling_possible(const Position& p, bool king_side) {
    const Castling& c = castling(p.side, king_side);
    return (p.castle & c.right) != 0 && king_square(p, p.side) == c.king_from &&
           (c.path & occupied(p)) == 0;
}

MoveEntry* gen_captures(const Position& p, MoveEntry* out) {
    return p.side == WHITE ? gen_captures_of<WHITE>(p, out) : gen_captures_of<BLACK>(p, out);
}

MoveEntry* gen_promotions(const Position& p, bool all_four, MoveEntry* out) {
    return p.side == WHITE ? gen_promotions_of<WHITE>(p, all_four, out)
                           : gen_promotions_of<BLACK>(p, all_four, out);
}

MoveEntry* gen_quiets(const Position& p, MoveEntry* out) {
    return p.side == WHITE ? gen_quiets_of<WHITE>(p, out) : gen_quiets_of<BLACK>(p, out);
}

MoveEntry* gen_all(const Position& p, MoveEntry* out) {
    MoveEntry* end = gen_quiets(p, gen_promotions(p, true, gen_captures(p, out)));
    assert(end - out < MAX_LIST);
    return terminate_list(end);
}

}  // namespace quon
