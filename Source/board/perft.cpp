// Perft. The moves of the last ply are counted as sets, neither listed nor made: only king moves,
// en passant and the moves of pinned pieces are looked at one by one.

#include "board/perft.h"

#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"

namespace quon {

namespace {

// Pieces that give check.
template <int Us>
Bitboard checkers(const Position& p, int king) {
    const auto& enemy = p.bb[Us ^ 1];
    const Bitboard occupancy = occupied(p);
    return (pawn_attacks[Us][king] & enemy[PAWN]) | (knight_attacks[king] & enemy[KNIGHT]) |
           (bishop_attacks(king, occupancy) & (enemy[BISHOP] | enemy[QUEEN])) |
           (rook_attacks(king, occupancy) & (enemy[ROOK] | enemy[QUEEN]));
}

// Moves to the destinations; a pawn that arrives on the last rank becomes one of four pieces.
template <int Us>
u64 moves_to(Bitboard destinations) {
    const Bitboard promoting = destinations & relative_rank_mask(Us, 7);
    return u64(popcount64(destinations)) + 3 * u64(popcount64(promoting));
}

template <int Us>
u64 pawn_moves(const Position& p, Bitboard pawns, Bitboard allowed) {
    const Bitboard empty = ~occupied(p);
    const Bitboard ahead = shift_forward<Us>(pawns);
    const Bitboard single = ahead & empty;
    const Bitboard twice = shift_forward<Us>(single & relative_rank_mask(Us, 2)) & empty;
    const Bitboard enemies = p.bb[Us ^ 1][0];
    return moves_to<Us>(single & allowed) + moves_to<Us>(twice & allowed) +
           moves_to<Us>(shift_west(ahead) & enemies & allowed) +
           moves_to<Us>(shift_east(ahead) & enemies & allowed);
}

// The squares on the king's line through a pinned piece, pieces not regarded.
Bitboard pin_line(int king, int from) {
    const auto& lines = has(orth_lines[king], from) ? orth_lines : diag_lines;
    return (lines[king] & lines[from]) | bit(from);
}

u64 legal_moves_to(const Position& p, const KingGuard& guard, int from, Bitboard targets) {
    u64 moves = 0;
    while (targets) moves += is_legal(p, make_code(from, pop_square(targets)), guard);
    return moves;
}

template <int Us>
u64 king_and_en_passant_moves(const Position& p, const KingGuard& guard) {
    const int king = guard.king;
    u64 moves = legal_moves_to(p, guard, king, king_attacks[king] & ~p.bb[Us][0]);
    for (const bool king_side : {true, false}) {
        if (castling_possible(p, king_side)) {
            moves += is_legal(p, make_code(king, castling(Us, king_side).king_to), guard);
        }
    }
    if (p.ep == NO_SQUARE) return moves;
    Bitboard pawns = pawn_attacks[Us ^ 1][p.ep] & p.bb[Us][PAWN];
    while (pawns) moves += is_legal(p, make_code(pop_square(pawns), p.ep), guard);
    return moves;
}

template <int Us>
u64 count_moves(const Position& p) {
    const auto& own = p.bb[Us];
    const Bitboard checking = checkers<Us>(p, king_square(p, Us));
    const KingGuard guard = king_guard(p, checking != 0);
    u64 moves = king_and_en_passant_moves<Us>(p, guard);
    if (more_than_one(checking)) return moves;
    const Bitboard allowed =
        checking ? between[guard.king][lsb_index(checking)] | checking : ~Bitboard{0};

    moves += pawn_moves<Us>(p, own[PAWN] & ~guard.pinned, allowed);
    const Bitboard occupancy = occupied(p);
    for (int type = KNIGHT; type <= QUEEN; ++type) {
        Bitboard pieces = own[type] & ~guard.pinned;
        while (pieces) {
            const Bitboard attacks = attacks_from(type, pop_square(pieces), occupancy);
            moves += u64(popcount64(attacks & ~own[0] & allowed));
        }
    }
    if (checking) return moves;  // a pinned piece answers no check
    for (Bitboard pinned = guard.pinned; pinned;) {
        const int from = pop_square(pinned);
        const int type = type_of(p.board[from]);
        const Bitboard line = pin_line(guard.king, from);
        moves += type == PAWN
                     ? pawn_moves<Us>(p, bit(from), line)
                     : u64(popcount64(attacks_from(type, from, occupancy) & ~own[0] & line));
    }
    return moves;
}

constexpr u64 NODES_PER_LOOK = 256;  // nodes of two plies or more

struct Count {
    const std::function<bool()>& keep_on;
    u64 nodes = 0;
    bool ended = false;
};

bool ended(Count& count) {
    if (++count.nodes % NODES_PER_LOOK == 0 && count.keep_on && !count.keep_on()) {
        count.ended = true;
    }
    return count.ended;
}

u64 count_paths(Count& count, Position& p, int depth) {
    if (depth < 1) return 0;
    if (depth == 1) return p.side == WHITE ? count_moves<WHITE>(p) : count_moves<BLACK>(p);
    if (ended(count)) return 0;
    MoveEntry list[MAX_LIST];
    const MoveEntry* end = gen_all(p, list);
    const KingGuard guard = king_guard(p);
    u64 nodes = 0;
    for (const MoveEntry* entry = list; entry != end; ++entry) {
        if (!is_legal(p, entry->move, guard)) continue;
        make_move(p, entry->move);
        nodes += count_paths(count, p, depth - 1);
        unmake_move(p);
    }
    return nodes;
}

}  // namespace

std::optional<u64> perft(Position& p, int depth, const std::function<bool()>& keep_on) {
    Count count{keep_on};
    const u64 nodes = count_paths(count, p, depth);
    if (count.ended) return std::nullopt;
    return nodes;
}

}  // namespace quon
