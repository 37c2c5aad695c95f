// Legality by exception: when the king is not in check only king moves, pinned pieces and
// en-passant captures can be illegal, so most moves pass without looking at the board.

#include "board/legality.h"

#include <cassert>

#include "board/movegen.h"

namespace quon {

KingGuard king_guard(const Position& p, bool in_check) {
    const int us = p.side;
    const int king = king_square(p, us);
    assert(p.board[king] == make_piece(us, KING));
    const Bitboard sliders = aligned_sliders(p, us ^ 1, king);
    return {king, in_check, lone_blockers(king, sliders, occupied(p)) & p.bb[us][0]};
}

namespace {

// The king's safety with the move's pieces lifted and set down.
bool safe_after(const Position& p, Move move, int king) {
    const int from = move_from(move);
    const int to = move_to(move);
    Bitboard occupancy = (occupied(p) & ~bit(from)) | bit(to);
    const bool en_passant = to == p.ep && type_of(p.board[from]) == PAWN;
    if (en_passant) occupancy ^= bit(to - forward(p.side));

    // A captured piece stands on `to`, inside the occupancy, but attacks no more.
    return !square_attacked(p, king, p.side ^ 1, occupancy, occupancy & ~bit(to));
}

}  // namespace

bool is_legal(const Position& p, Move move, const KingGuard& guard) {
    const int from = move_from(move);
    const int to = move_to(move);
    if (from == guard.king) {
        if (!is_castling(KING, from, to)) return safe_after(p, move, to);
        const int by = p.side ^ 1;
        return !guard.in_check && !square_attacked(p, castling(p.side, to > from).rook_to, by) &&
               !square_attacked(p, to, by);
    }
    if (guard.in_check || (to == p.ep && type_of(p.board[from]) == PAWN)) {
        return safe_after(p, move, guard.king);
    }
    if (!has(guard.pinned, from)) return true;
    return has(between[guard.king][to], from) || has(between[guard.king][from], to);
}

namespace {

bool direct_check(int type, int side, int to, int enemy_king, Bitboard occupancy) {
    if (type == PAWN) return has(pawn_attacks[side][to], enemy_king);
    return type != KING && attacks_square(type, to, enemy_king, occupancy);
}

bool opens_line(const Table<Bitboard, 64>& lines, Bitboard sliders, int from, int enemy_king,
                Bitboard occupancy) {
    if (!has(lines[enemy_king], from)) return false;
    sliders &= lines[enemy_king] & lines[from];
    while (sliders) {
        if ((between[pop_square(sliders)][enemy_king] & occupancy) == 0) return true;
    }
    return false;
}

}  // namespace

int gives_check(const Position& p, const MoveEntry& entry) {
    const int side = p.side;
    const int from = move_from(entry.move);
    const int to = move_to(entry.move);
    const int enemy_king = king_square(p, side ^ 1);
    const Bitboard occupancy = occupied(p);
    const auto& own = p.bb[side];

    const Bitboard after = (occupancy & ~bit(from)) | bit(to);
    if (opens_line(orth_lines, own[ROOK] | own[QUEEN], from, enemy_king, after)) return 2;
    if (opens_line(diag_lines, own[BISHOP] | own[QUEEN], from, enemy_king, after)) return 2;

    const int promoted = promotion_type(entry.move);
    const int type = promoted ? promoted : type_of(entry.piece);
    return direct_check(type, side, to, enemy_king, occupancy) ? 1 : 0;
}

namespace {

bool pawn_move_possible(const Position& p, int from, int to) {
    const int us = p.side;
    if (has(pawn_attacks[us][from], to)) return p.board[to] != 0 || to == p.ep;
    if (p.board[to] != 0) return false;
    const int ahead = from + forward(us);
    if (to == ahead) return true;
    return relative_rank(us, from) == 1 && to == ahead + forward(us) && p.board[ahead] == 0;
}

}  // namespace

bool is_pseudo_legal(const Position& p, Move move) {
    const int us = p.side;
    const int from = move_from(move);
    const int to = move_to(move);
    const int piece = p.board[from];
    const Move promotion = move & PROMOTION_MASK;
    if (piece == 0 || color_of(piece) != us || has(p.bb[us][0], to)) return false;

    const int type = type_of(piece);
    if (type == PAWN) {
        const bool promotes = relative_rank(us, to) == 7;
        const bool one_bit = promotion != 0 && (promotion & (promotion - 1)) == 0;
        return (promotes ? one_bit : promotion == 0) && pawn_move_possible(p, from, to);
    }
    if (promotion != 0) return false;
    if (attacks_square(type, from, to, occupied(p))) return true;
    return is_castling(type, from, to) && from == king_square(p, us) &&
           castling_possible(p, to > from);
}

bool can_be_made(const Position& p, Move move) {
    return move != NO_MOVE && position_problem(p) == nullptr && is_pseudo_legal(p, move) &&
           is_legal(p, move);
}

bool has_legal_move(const Position& p) {
    MoveEntry list[MAX_LIST];
    const KingGuard guard = king_guard(p);
    for (const MoveEntry *entry = list, *end = gen_all(p, list); entry != end; ++entry) {
        if (is_legal(p, entry->move, guard)) return true;
    }
    return false;
}

}  // namespace quon
