// The move loop of a node: late-move pruning, extensions, reductions, re-searches, and what is
// learned from the result.

#include <algorithm>

#include "board/legality.h"
#include "board/make.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/history.h"
#include "search/move_flags.h"
#include "search/picker.h"
#include "search/score.h"
#include "search/search.h"
#include "search/search_params.h"
#include "search/search_trace.h"

namespace quon {

namespace {

constexpr int GOOD_ORDER = 40;  // killers and their like
constexpr int IMPROVING_MARGIN = 150;
constexpr int MAX_TABLE_DEPTH = 36;  // of the reduction tables
constexpr int MAX_TABLE_MOVES = 31;

// What stays the same for all moves of the node.
struct MoveLoop {
    ThreadData& t;
    PlyRecord& record;
    int ply;
    int depth;
    int beta;
    bool in_check;
    int node_type;
    bool lmp_ok;
    bool lmr_ok;
    int lmp_limit;
    int ext_acc;  // the node's own accumulator
    int alpha;
    int best = NO_SCORE;
    Move best_move = NO_MOVE;

    [[nodiscard]] bool zero_window() const { return node_type != 0; }
};

// One move, with its exchange value computed at most once.
struct Candidate {
    const Position& p;
    const MoveEntry& entry;
    int flags;
    int losing = -1;

    bool loses() {
        if (losing < 0) losing = loses_material(p, entry);
        return losing != 0;
    }
};

MoveLoop start_loop(ThreadData& t, int ply, int depth, int alpha, int beta, bool in_check,
                    int node_type) {
    PlyRecord& record = t.plies[ply];
    record.move_count = 0;
    record.stage = PickStage::START;
    const bool lmp_ok =
        depth <= search_params.LMP_depth && !in_check && !record.in_iid && node_type != 0;
    const bool lmr_ok =
        depth >= search_params.LMR_depth && !in_check && ply + depth > t.iteration / 2;
    const int lmp_limit = std::max(search_params.LMP_count * depth, 4);
    return {t,         record, ply,    depth,     beta,      in_check,
            node_type, lmp_ok, lmr_ok, lmp_limit, t.ext_acc, alpha};
}

// Late in a quiet node near the horizon only threats and well-ordered moves are worth a search.
bool late_move_pruned(const MoveLoop& loop, Candidate& move) {
    if (!loop.lmp_ok || is_loss(loop.best) || move.flags != 0) return false;
    if (loop.record.move_count < loop.lmp_limit || is_castling_move(move.entry)) return false;
    if (move.entry.order < GOOD_ORDER && !is_threat(move.p, move.entry)) return true;
    return move.loses();
}

// In sixteenths of a ply.
int extension_share(const MoveLoop& loop, Candidate& move) {
    if (loop.record.singular && move.entry.move == loop.record.hash_move) return 16;
    if (move.flags & DISCOVERED_CHECK) return 16;
    if ((move.flags & (CHECK | PAWN_TO_SEVENTH)) && !move.loses())
        return loop.zero_window() ? 8 : 16;
    if (move.flags & CAPTURE) return loop.ply < 7 && !loop.zero_window() ? 8 : 4;
    return 0;
}

// Plies of extension, 0 or 1; what does not make a whole ply carries down the line.
int extension(const MoveLoop& loop, Candidate& move) {
    int gathered = loop.ext_acc + extension_share(loop, move);
    const int plies = gathered >= 16 ? 1 : 0;
    if (plies) gathered -= 16;
    loop.t.ext_acc = gathered;
    return plies;
}

int flagged_reduction(const MoveLoop& loop, Candidate& move) {
    const int reduction = move.loses() && !(move.flags & DISCOVERED_CHECK) ? 1 : 0;
    return loop.depth - reduction < 1 ? loop.depth - 1 : reduction;
}

int quiet_reduction(const MoveLoop& loop, Candidate& move) {
    const int depth = std::min(loop.depth, MAX_TABLE_DEPTH);
    const int moves = std::min(loop.record.move_count, MAX_TABLE_MOVES);
    const ReductionTable& table = loop.zero_window() ? zero_window_reductions : pv_reductions;
    int reduction = table[depth][moves];
    const bool improving =
        loop.record.static_eval >= loop.t.plies[loop.ply - 2].static_eval - IMPROVING_MARGIN;
    const bool losing = move.loses();
    if (!losing && move.entry.order >= GOOD_ORDER) {
        reduction = 0;
    } else if ((losing || !improving) && depth - reduction > 2 && moves > 2) {
        ++reduction;
    }
    return depth - reduction < 1 ? depth - 1 : reduction;
}

int late_move_reduction(const MoveLoop& loop, Candidate& move, int extended) {
    const bool reducible =
        !extended && loop.lmr_ok && !is_loss(loop.best) && loop.record.move_count > 0;
    if (!reducible) return 0;
    return move.flags ? flagged_reduction(loop, move) : quiet_reduction(loop, move);
}

// Later moves must first beat alpha with a zero window, reduced; only then are they searched in
// full.
int search_move(const MoveLoop& loop, int extended, int reduction) {
    ThreadData& t = loop.t;
    const int depth = loop.depth + extended;
    const int reduced = depth - reduction;
    if (loop.best != NO_SCORE && reduced > 1) {
        const int score =
            -search_node(t, loop.ply + 1, reduced - 1, -loop.alpha - 1, -loop.alpha, 1);
        if (score <= loop.alpha) return score;
    }
    return -search_node(t, loop.ply + 1, depth - 1, -loop.beta, -loop.alpha, -loop.node_type);
}

// Takes a score into account; true for a cut-off.
bool accept_score(MoveLoop& loop, Move move, int score) {
    if (score <= loop.best) return false;
    loop.best = score;
    loop.best_move = move;
    auto& line = loop.t.pv[loop.ply];
    line[loop.ply] = move;
    line[loop.ply + 1] = NO_MOVE;
    if (score <= loop.alpha) return false;
    if (score >= loop.beta) return true;
    extend_line(loop.t, loop.ply);
    loop.alpha = score;
    return false;
}

int finish_loop(MoveLoop& loop) {
    ThreadData& t = loop.t;
    t.ext_acc = loop.ext_acc;
    if (loop.record.move_count == 0) loop.best = loop.in_check ? mated_in(loop.ply) : DRAW_SCORE;
    if (loop.depth < 0) return loop.best;
    hash_store(t.position, loop.ply, loop.depth, loop.best, loop.record.alpha, loop.record.beta,
               loop.best_move);
    const bool quiet = loop.best_move != NO_MOVE && t.position.board[move_to(loop.best_move)] == 0;
    if (loop.best >= loop.beta && quiet) update_killers(t, loop.ply, loop.best_move, loop.in_check);
    return loop.best;
}

}  // namespace

int search_moves(ThreadData& t, int ply, int depth, int alpha, int beta, bool in_check,
                 int node_type) {
    Position& p = t.position;
    MoveLoop loop = start_loop(t, ply, depth, alpha, beta, in_check, node_type);
    PlyRecord& record = loop.record;
    const KingGuard guard = king_guard(p, in_check);

    while (const MoveEntry* entry = next_move(t, ply, in_check)) {
        if (entry->move == record.hash_move && record.move_count > 0) continue;
        if (!is_legal(p, entry->move, guard)) continue;

        Candidate move{p, *entry, in_check ? 0 : move_flags(p, *entry)};
        if (late_move_pruned(loop, move)) continue;
        const int extended = extension(loop, move);
        const int reduction = late_move_reduction(loop, move, extended);

        trace_before_make(t, entry->move);
        make_move(p, entry->move);
        const int score = search_move(loop, extended, reduction);
        unmake_move(p);
        if (stopped()) {
            t.ext_acc = loop.ext_acc;
            return 0;
        }
        ++record.move_count;
        if (!in_check && !(move.flags & CAPTURE)) {
            update_history(t, *entry, score > loop.alpha, depth);
        }
        if (accept_score(loop, entry->move, score)) break;
    }
    return finish_loop(loop);
}

}  // namespace quon
