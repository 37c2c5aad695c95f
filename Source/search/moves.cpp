// The move loop of a node.
//
// For each move, in the picker's order:
//
//   1  late-move pruning (by move count): late in a quiet node near the horizon only moves with a
//      point are tried
//   2  extension: checks, pawns to the seventh rank, captures and the singular move are searched
//      deeper, in sixteenths of a ply that add up along the line
//   3  late-move reduction: what comes late in a well-ordered list is probably worse; it is first
//      searched less deeply
//   4  principal variation search: after the first move a zero window asks only whether the move
//      beats alpha, reduced; if it does it is searched again, to the full depth and window
//   5  what is learned: history after each quiet move, killers and counter moves after a cut-off,
//      the transposition table at the end
//
// Pruning and reductions rest on good order: the first moves are never touched, nor are any while
// the best score so far is a loss. In check all moves are searched in full: there are few, and each
// may be the only one.

#include <algorithm>
#include <cassert>

#include "board/legality.h"
#include "board/make.h"
#include "search/descend.h"
#include "search/history.h"
#include "search/move_flags.h"
#include "search/node.h"
#include "search/picker.h"
#include "search/score.h"
#include "search/search.h"
#include "search/searcher.h"

namespace quon {

namespace {

constexpr int LEAST_LMP_COUNT = 4;  // moves that late-move pruning never touches

// Sixteenths of a ply.
constexpr int PLY = 16;
constexpr int ZERO_WINDOW_CHECK = 8;
constexpr int PV_CAPTURE = 8;
constexpr int OTHER_CAPTURE = 4;
constexpr int PV_CAPTURE_PLIES = 7;  // from the root; below, captures count for less

constexpr int IMPROVING_MARGIN = 150;  // centipawns; a side that loses more in two plies gets worse
constexpr int MAX_TABLE_DEPTH = 36;    // of the reduction tables
constexpr int MAX_TABLE_MOVES = 31;

// What stays the same for all moves, and what the moves have brought so far.
struct MoveLoop {
    const Node& node;
    ThreadData& t;
    PlyRecord& record;
    int depth;
    int beta;
    bool lmp_ok;
    bool lmr_ok;
    int lmp_limit;
    int ext_acc;  // the node's own accumulator, sixteenths of a ply
    int alpha;
    int best = NO_SCORE;
    Move best_move = NO_MOVE;
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

MoveLoop start_loop(const Node& node, int depth, int alpha, int beta) {
    ThreadData& t = node.t;
    const EvalParams& params = t.shared->params;
    PlyRecord& record = node.record;
    record.move_count = 0;
    record.stage = PickStage::START;
    return {
        .node = node,
        .t = t,
        .record = record,
        .depth = depth,
        .beta = beta,
        .lmp_ok = depth <= params.LMP_depth && !node.in_check && !record.in_iid && node.zero_window,
        .lmr_ok = depth >= params.LMR_depth && !node.in_check && node.ply + depth > t.iteration / 2,
        .lmp_limit = std::max(params.LMP_count * depth, LEAST_LMP_COUNT),
        .ext_acc = t.ext_acc,
        .alpha = alpha};
}

// 1. Late-move pruning: only threats and well-ordered moves are worth a search.
bool late_move_pruned(const MoveLoop& loop, Candidate& move) {
    if (!loop.lmp_ok || is_loss(loop.best) || move.flags != 0) return false;
    if (loop.record.move_count < loop.lmp_limit || is_castling_move(move.entry)) return false;
    if (move.entry.order < GOOD_QUIET_ORDER && !is_threat(move.p, move.entry)) return true;
    return move.loses();
}

// 2. Extensions, in sixteenths of a ply: singular extension, check extension (discovered or sound),
// pawns to the seventh rank, captures.
int extension_share(const MoveLoop& loop, Candidate& move) {
    const Node& node = loop.node;
    if (loop.record.singular && move.entry.move == loop.record.hash_move) return PLY;
    if (move.flags & DISCOVERED_CHECK) return PLY;
    if ((move.flags & (CHECK | PAWN_TO_SEVENTH)) && !move.loses()) {
        return node.zero_window ? ZERO_WINDOW_CHECK : PLY;
    }
    if (!(move.flags & CAPTURE)) return 0;
    return node.ply < PV_CAPTURE_PLIES && !node.zero_window ? PV_CAPTURE : OTHER_CAPTURE;
}

// Plies of extension, 0 or 1; what does not make a whole ply carries down the line.
int extension(const MoveLoop& loop, Candidate& move) {
    const int gathered = loop.ext_acc + extension_share(loop, move);
    const int plies = gathered >= PLY ? 1 : 0;
    loop.t.ext_acc = gathered - plies * PLY;
    return plies;
}

// 3. Late-move reductions. At least one ply stays.
int at_most_to_one_ply(int depth, int reduction) {
    return depth - reduction < 1 ? depth - 1 : reduction;
}

int flagged_reduction(const MoveLoop& loop, Candidate& move) {
    const int reduction = move.loses() && !(move.flags & DISCOVERED_CHECK) ? 1 : 0;
    return at_most_to_one_ply(loop.depth, reduction);
}

int quiet_reduction(const MoveLoop& loop, Candidate& move) {
    const SearchParams& search_params = loop.t.shared->search_params;
    const ReductionTable& table =
        loop.node.zero_window ? search_params.zero_window_reductions : search_params.pv_reductions;
    const int depth = std::min(loop.depth, MAX_TABLE_DEPTH);
    const int moves = std::min(loop.record.move_count, MAX_TABLE_MOVES);
    int reduction = table[depth][moves];
    const int two_plies_ago = loop.t.plies[loop.node.ply - 2].static_eval;
    const bool improving = loop.record.static_eval >= two_plies_ago - IMPROVING_MARGIN;
    const bool losing = move.loses();
    if (!losing && move.entry.order >= GOOD_QUIET_ORDER) {
        reduction = 0;
    } else if ((losing || !improving) && depth - reduction > 2 && moves > 2) {
        ++reduction;
    }
    return at_most_to_one_ply(depth, reduction);
}

int late_move_reduction(const MoveLoop& loop, Candidate& move, int extended) {
    const bool reducible =
        !extended && loop.lmr_ok && !is_loss(loop.best) && loop.record.move_count > 0;
    if (!reducible) return 0;
    return move.flags ? flagged_reduction(loop, move) : quiet_reduction(loop, move);
}

// 4. Principal variation search: later moves must first beat alpha with a zero window, reduced;
// only then are they searched in full.
int search_move(const MoveLoop& loop, int extended, int reduction) {
    ThreadData& t = loop.t;
    const int ply = loop.node.ply;
    const int depth = loop.depth + extended;
    const int reduced = depth - reduction;
    if (loop.best != NO_SCORE && reduced > 1) {
        const int score = -search_node(t, ply + 1, reduced - 1, -loop.alpha - 1, -loop.alpha, true);
        if (score <= loop.alpha) return score;
    }
    return -search_node(t, ply + 1, depth - 1, -loop.beta, -loop.alpha, loop.node.zero_window);
}

// Takes a score into account; true for a cut-off.
bool accept_score(MoveLoop& loop, Move move, int score) {
    if (score <= loop.best) return false;
    loop.best = score;
    loop.best_move = move;
    end_line(loop.t, loop.node.ply, move);
    if (score <= loop.alpha) return false;
    if (score >= loop.beta) return true;
    extend_line(loop.t, loop.node.ply);
    loop.alpha = score;
    return false;
}

// 5. What the whole loop has found.
int finish_loop(MoveLoop& loop) {
    ThreadData& t = loop.t;
    const Node& node = loop.node;
    t.ext_acc = loop.ext_acc;
    if (loop.record.move_count == 0) loop.best = node.in_check ? mated_in(node.ply) : DRAW_SCORE;
    if (loop.depth < 0) return loop.best;
    hash_store(t.shared->hash, t.position, node.ply, loop.depth, loop.best, loop.record.alpha,
               loop.record.beta, loop.best_move);
    const bool quiet = loop.best_move != NO_MOVE && t.position.board[move_to(loop.best_move)] == 0;
    if (loop.best >= loop.beta && quiet) {
        update_killers(t, node.ply, loop.best_move, node.in_check);
    }
    return loop.best;
}

}  // namespace

int search_moves(const Node& node, int depth, int alpha, int beta) {
    assert(alpha < beta);
    ThreadData& t = node.t;
    Position& p = t.position;
    MoveLoop loop = start_loop(node, depth, alpha, beta);
    PlyRecord& record = loop.record;
    const KingGuard guard = king_guard(p, node.in_check);

    while (const MoveEntry* entry = next_move(t, node.ply, node.in_check)) {
        if (entry->move == record.hash_move && record.move_count > 0) continue;
        if (!is_legal(p, entry->move, guard)) continue;

        Candidate move{p, *entry, node.in_check ? 0 : move_flags(p, *entry)};
        if (late_move_pruned(loop, move)) continue;
        const int extended = extension(loop, move);
        const int reduction = late_move_reduction(loop, move, extended);

        descend(t, entry->move, true);
        const int score = search_move(loop, extended, reduction);
        unmake_move(p);
        if (stopped(t)) {
            t.ext_acc = loop.ext_acc;
            return 0;
        }
        ++record.move_count;
        if (!node.in_check && !(move.flags & CAPTURE)) {
            update_history(t, *entry, score > loop.alpha, depth);
        }
        if (accept_score(loop, entry->move, score)) break;
    }
    return finish_loop(loop);
}

}  // namespace quon
