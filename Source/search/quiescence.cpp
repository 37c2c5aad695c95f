// Quiescence search: captures and queen promotions until the position is quiet; on the first level
// also quiet checks and pawns to the seventh rank.
//
//   1  stand pat: the side need not capture, so the evaluation is a lower bound
//   2  the moves: captures by victim and attacker, then quiet checks in the order of generation
//   3  delta pruning: a capture that cannot bring the score near alpha is not tried
//   4  exchange pruning: below the first level, nor is one that loses material
//   5  the child, through search_node: in check it gets a full search of its evasions
//
// Most nodes of a search are these, so a node costs little: it stands on the evaluation that
// search_node has stored, and neither reads nor writes the transposition table. What bounds the
// tree is 3 and 4; a position with many mutual captures can still make it explode.

#include <algorithm>
#include <cassert>

#include "board/legality.h"
#include "board/make.h"
#include "board/see.h"
#include "search/descend.h"
#include "search/picker.h"
#include "search/search.h"
#include "search/searcher.h"

namespace quon {

namespace {

constexpr int QUIET_CHECK_ORDER = 100;
// Delta pruning: a capture that leaves the score this far below the best is not tried.
constexpr int DELTA_MARGIN = 250;
constexpr int ZERO_WINDOW_MARGIN = 150;  // in zero-window nodes, but for calls from razoring

MoveEntry* add_quiet(MoveEntry* out, int from, int to, int piece) {
    *out = {make_code(from, to), QUIET_CHECK_ORDER, u8(piece), 0};
    return out + 1;
}

MoveEntry* add_pawn_pushes(const Position& p, MoveEntry* out, Bitboard destinations) {
    const int step = forward(p.side);
    const Bitboard pawns = p.bb[p.side][PAWN];
    destinations &= p.side == WHITE ? shift_forward<WHITE>(pawns) : shift_forward<BLACK>(pawns);
    while (destinations) {
        const int to = pop_square(destinations);
        out = add_quiet(out, to - step, to, make_piece(p.side, PAWN));
    }
    return out;
}

// Quiet moves that give direct check, then every push to the seventh rank.
MoveEntry* gen_quiet_checks(const Position& p, MoveEntry* out) {
    const int us = p.side;
    const int king = king_square(p, us ^ 1);
    const Bitboard occupancy = occupied(p);
    const Bitboard empty = ~occupancy;
    out = add_pawn_pushes(p, out, pawn_attacks[us ^ 1][king] & empty);
    for (int type = KNIGHT; type <= QUEEN; ++type) {
        const int piece = make_piece(us, type);
        const Bitboard checks = attacks_from(type, king, occupancy) & empty;
        for (const u8* square = p.plist[piece].begin(); *square != NO_SQUARE; ++square) {
            Bitboard targets = attacks_from(type, *square, occupancy) & checks;
            while (targets) out = add_quiet(out, *square, pop_square(targets), piece);
        }
    }
    return add_pawn_pushes(p, out, relative_rank_mask(us, 6) & empty);
}

// Captures best first; when they are used up and the level allows it, the quiet checks in order.
struct QuiescencePicker {
    ThreadData& t;
    int ply;
    bool checks_wanted;
    MoveEntry* pick;
    bool in_checks = false;

    const MoveEntry* next() {
        if (!in_checks) {
            if (select_best(pick)) return pick++;
            if (!checks_wanted) return nullptr;
            in_checks = true;
            pick = t.plies[ply].list_start;
            finish_list(t, ply, gen_quiet_checks(t.position, pick));
        }
        return pick->move == LIST_END ? nullptr : pick++;
    }
};

// Moves that are tried whatever they take: a pawn about to promote, and the capture that leaves the
// opponent without pawns in an ending where that decides.
bool exempt_from_delta(const Position& p, const MoveEntry& entry) {
    const int us = p.side;
    if (type_of(entry.piece) == PAWN && relative_rank(us, move_to(entry.move)) >= 6) return true;
    if (entry.captured == 0) return false;
    const int victim = type_of(entry.captured);
    const int pawns_left = pawn_count(p, us ^ 1) - (victim == PAWN ? 1 : 0);
    return pawns_left == 0 && p.npm[us ^ 1] - NPM_UNIT[victim] - p.npm[us] < 4;
}

}  // namespace

int qsearch(ThreadData& t, int ply, int depth, int alpha, int beta, bool zero_window) {
    Position& p = t.position;
    PlyRecord& record = t.plies[ply];
    assert(alpha < beta && record.static_eval != EVAL_IN_CHECK);
    // 1. Stand pat.
    const int eval = record.static_eval;
    if (eval >= beta) return beta;
    int best = std::max(eval, alpha);
    const int margin = depth < 1 && zero_window ? ZERO_WINDOW_MARGIN : DELTA_MARGIN;
    const KingGuard guard = king_guard(p, false);

    // 2. The moves.
    list_quiescence_captures(t, ply);
    QuiescencePicker picker{t, ply, depth >= 0, record.list_start};
    while (const MoveEntry* entry = picker.next()) {
        record.next_pick = entry;
        // 3, 4. Delta and exchange pruning.
        const int check = gives_check(p, *entry);
        const bool hopeless = SEE_VALUE[type_of(entry->captured)] + eval <= best - margin;
        if (check == 0 && hopeless && !exempt_from_delta(p, *entry)) continue;
        if (depth < 1 && check != 2 && loses_material(p, *entry)) continue;
        if (!is_legal(p, entry->move, guard)) continue;

        // 5. The child.
        descend(t, entry->move, check != 0);
        const int score = -search_node(t, ply + 1, depth - 1, -beta, -best, zero_window);
        unmake_move(p);
        if (score <= best) continue;
        end_line(t, ply, entry->move);
        if (score >= beta) return score;
        extend_line(t, ply);
        best = score;
    }
    return best;
}

}  // namespace quon
