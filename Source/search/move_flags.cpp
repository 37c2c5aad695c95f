// Move flags and the threat test.

#include "search/move_flags.h"

#include "board/legality.h"
#include "eval/terms.h"

namespace quon {

namespace {

int pawn_flags(const Position& p, const MoveEntry& entry) {
    const int us = p.side;
    const int to = move_to(entry.move);
    int flags = to == p.ep ? CAPTURE : 0;
    if (entry.move & PROMOTE_QUEEN) flags |= QUEEN_PROMOTION;
    const int rank = relative_rank(us, to);
    if (rank == 6) flags |= PAWN_TO_SEVENTH;
    const bool free = (passed_span[us][to] & p.bb[us ^ 1][PAWN]) == 0;
    if ((rank == 4 || rank == 5) && free) flags |= PASSED_PAWN_PUSH;
    return flags;
}

}  // namespace

int move_flags(const Position& p, const MoveEntry& entry) {
    int flags = entry.captured ? CAPTURE : 0;
    const int check = gives_check(p, entry);
    if (check) flags |= CHECK;
    if (check == 2) flags |= DISCOVERED_CHECK;
    if (type_of(entry.piece) == PAWN) flags |= pawn_flags(p, entry);
    return flags;
}

bool is_castling_move(const MoveEntry& entry) {
    return is_castling(type_of(entry.piece), move_from(entry.move), move_to(entry.move));
}

namespace {

// Lines of one kind, and the own sliders that move on them, through which a slider still looks.
struct LineKind {
    const Table<Bitboard, 64>& lines;
    Bitboard own_sliders;
    Bitboard occupancy;

    // Squares newly seen from the destination.
    [[nodiscard]] Bitboard gained(int from, int to) const {
        return lines[to] & ~lines[from] & ~bit(from);
    }
    [[nodiscard]] bool any_open(int to, Bitboard targets, Bitboard blockers) const {
        while (targets) {
            if ((between[to][pop_square(targets)] & blockers) == 0) return true;
        }
        return false;
    }
    [[nodiscard]] bool attacks_piece(int from, int to, Bitboard victims) const {
        return any_open(to, victims & gained(from, to), occupancy);
    }
    [[nodiscard]] bool attacks_zone(int from, int to, Bitboard zone) const {
        return any_open(to, zone & gained(from, to), occupancy & ~own_sliders);
    }
};

}  // namespace

bool is_threat(const Position& p, const MoveEntry& entry) {
    const int us = p.side;
    const int from = move_from(entry.move);
    const int to = move_to(entry.move);
    const auto& own = p.bb[us];
    const auto& enemy = p.bb[us ^ 1];
    const Bitboard zone = king_attacks[king_square(p, us ^ 1)];
    const LineKind diagonal{diag_lines, own[BISHOP] | own[QUEEN], occupied(p)};
    const LineKind straight{orth_lines, own[ROOK] | own[QUEEN], occupied(p)};
    const Bitboard majors = enemy[ROOK] | enemy[QUEEN];
    switch (type_of(entry.piece)) {
        case PAWN:
            return (pawn_attacks[us][to] & (enemy[KNIGHT] | enemy[BISHOP] | majors | zone)) != 0;
        case KNIGHT: return (knight_attacks[to] & (majors | zone)) != 0;
        case BISHOP:
            return diagonal.attacks_piece(from, to, majors) ||
                   diagonal.attacks_zone(from, to, zone);
        case ROOK:
            return straight.attacks_piece(from, to, enemy[QUEEN]) ||
                   straight.attacks_zone(from, to, zone);
        case QUEEN:
            return diagonal.attacks_zone(from, to, zone) || straight.attacks_zone(from, to, zone);
        default: return false;
    }
}

}  // namespace quon
