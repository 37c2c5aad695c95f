// Moves of a ProbePosition.

#include "syzygy/tbprobe_position.h"

#include <algorithm>

namespace quon {

namespace {

constexpr Bitboard END_RANKS = RANK_1 | RANK_8;
constexpr int LAST_PROMOTION = 4;

// True if any of the pieces attacks the square.
bool attacked_by(const ProbePosition& p, Bitboard pieces, int square, int color) {
    const Bitboard all = occupied(p);
    return ((pawn_attacks[color ^ 1][square] & p.pawns) | (knight_attacks[square] & p.knights) |
            (king_attacks[square] & p.kings) |
            (bishop_attacks(square, all) & (p.bishops | p.queens)) |
            (rook_attacks(square, all) & (p.rooks | p.queens))) &
           pieces;
}

int mover_color(const ProbePosition& p) { return p.turn ? WHITE : BLACK; }

void add_moves(ProbeMoves& list, int from, Bitboard targets) {
    while (targets) list.moves[list.count++] = {u8(from), u8(pop_square(targets)), 0, false};
}

void add_pawn_moves(ProbeMoves& list, int from, Bitboard targets) {
    add_moves(list, from, targets & ~END_RANKS);
    targets &= END_RANKS;
    while (targets) {
        const int to = pop_square(targets);
        for (int promotion = 1; promotion <= LAST_PROMOTION; ++promotion) {
            list.moves[list.count++] = {u8(from), u8(to), u8(promotion), false};
        }
    }
}

void add_en_passant(const ProbePosition& p, ProbeMoves& list) {
    if (p.ep == 0) return;
    Bitboard pawns = pawn_attacks[mover_color(p) ^ 1][p.ep] & p.pawns & mover_pieces(p);
    while (pawns) list.moves[list.count++] = {u8(pop_square(pawns)), p.ep, 0, true};
}

Bitboard pawn_pushes(const ProbePosition& p, int from) {
    const int color = mover_color(p);
    const Bitboard free = ~occupied(p);
    const Bitboard one = bit(from + forward(color)) & free;
    if (!one || relative_rank(color, from) != 1) return one;
    return one | (bit(from + 2 * forward(color)) & free);
}

Bitboard piece_attacks(const ProbePosition& p, int square) {
    const Bitboard all = occupied(p);
    if (has(p.knights, square)) return knight_attacks[square];
    if (has(p.kings, square)) return king_attacks[square];
    Bitboard attacks = 0;
    if (has(p.bishops | p.queens, square)) attacks |= bishop_attacks(square, all);
    if (has(p.rooks | p.queens, square)) attacks |= rook_attacks(square, all);
    return attacks;
}

// Takes whatever stands on the squares off the board.
void clear_squares(ProbePosition& p, Bitboard squares) {
    for (u64* set :
         {&p.white, &p.black, &p.kings, &p.queens, &p.rooks, &p.bishops, &p.knights, &p.pawns}) {
        *set &= ~squares;
    }
}

// The type set that the moved piece belongs to afterwards.
u64& arriving_set(ProbePosition& p, const ProbeMove& move) {
    u64* const promoted[] = {nullptr, &p.queens, &p.rooks, &p.bishops, &p.knights};
    if (move.promotion != 0) return *promoted[move.promotion];
    for (u64* set : {&p.pawns, &p.kings, &p.queens, &p.rooks, &p.bishops}) {
        if (has(*set, move.from)) return *set;
    }
    return p.knights;
}

}  // namespace

bool well_formed(const ProbePosition& p) {
    const Bitboard types[] = {p.kings, p.queens, p.rooks, p.bishops, p.knights, p.pawns};
    Bitboard together = 0;
    for (const Bitboard type : types) {
        if (together & type) return false;
        together |= type;
    }
    return popcount64(p.kings & p.white) == 1 && popcount64(p.kings & p.black) == 1 &&
           (p.white & p.black) == 0 && together == occupied(p) && (p.pawns & END_RANKS) == 0;
}

bool mover_in_check(const ProbePosition& p) {
    const int king = lsb_index(p.kings & mover_pieces(p));
    return attacked_by(p, waiting_pieces(p), king, mover_color(p) ^ 1);
}

bool waiting_in_check(const ProbePosition& p) {
    const int king = lsb_index(p.kings & waiting_pieces(p));
    return attacked_by(p, mover_pieces(p), king, mover_color(p));
}

void list_moves(const ProbePosition& p, MoveKind kind, ProbeMoves& list) {
    list.count = 0;
    if (kind != MoveKind::CAPTURES) add_en_passant(p, list);
    if (kind == MoveKind::EN_PASSANT) return;
    const Bitboard enemy = waiting_pieces(p);
    const Bitboard targets = kind == MoveKind::ALL ? ~mover_pieces(p) : enemy;
    Bitboard pieces = mover_pieces(p);
    while (pieces) {
        const int from = pop_square(pieces);
        if (!has(p.pawns, from)) {
            add_moves(list, from, piece_attacks(p, from) & targets);
            continue;
        }
        const Bitboard captures = pawn_attacks[mover_color(p)][from] & enemy;
        add_pawn_moves(list, from, captures | (kind == MoveKind::ALL ? pawn_pushes(p, from) : 0));
    }
}

bool play(const ProbePosition& p, const ProbeMove& move, ProbePosition& child) {
    child = p;
    const int color = mover_color(p);
    u64& arriving = arriving_set(child, move);
    Bitboard cleared = bit(move.from) | bit(move.to);
    if (move.en_passant) cleared |= bit(move.to - forward(color));
    clear_squares(child, cleared);
    arriving |= bit(move.to);
    (color == WHITE ? child.white : child.black) |= bit(move.to);

    child.rule50 = resets_count(p, move) ? u8{0} : u8(std::min(p.rule50 + 1, 255));
    child.ep = 0;
    if (has(p.pawns, move.from) && (move.from ^ move.to) == 16) {
        const int passed = (move.from + move.to) / 2;
        if (pawn_attacks[color][passed] & child.pawns & waiting_pieces(p)) child.ep = u8(passed);
    }
    child.turn = p.turn ^ 1;
    return !waiting_in_check(child);
}

bool has_legal_move(const ProbePosition& p) {
    ProbeMoves list;
    ProbePosition child;
    list_moves(p, MoveKind::ALL, list);
    return std::any_of(list.begin(), list.end(),
                       [&](const ProbeMove& move) { return play(p, move, child); });
}

}  // namespace quon
