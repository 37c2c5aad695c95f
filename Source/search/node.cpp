// The node below the root, up to the point where its moves are tried.
//
// Most nodes never get to their moves. The steps stand in the order of what they cost: counting and
// bounds are free, a draw or a tablebase result ends the node for certain, the transposition table
// gives what another path has already found, and only then come the guesses, the cheap ones first.
// The order is part of the engine's behaviour: what a step learns (the window, the hash move, the
// expected score) is what the next one goes by.
//
//    1  count the node; stop, throttle
//    2  mate distance: a mate found closer to the root bounds the score
//    3  draws by repetition and the fifty-move rule
//    4  tablebases
//    5  static evaluation; the horizon: quiescence search
//    6  transposition table: cut-off, else a prediction of how the node will end
//    7  razoring: far below alpha near the horizon (a futility test on the whole node)
//    8  reverse futility ("static eval pruning"): far above beta near the horizon
//    9  ProbCut: a good capture that beats beta by a margin in a shallower search
//   10  null move: passing the turn still beats beta
//   11  internal iterative deepening: a shallower search finds the move to try first
//   12  singular extension: the hash move is better than all others by a margin
//   13  the moves (moves.cpp): late-move pruning, extensions, reductions
//
// 7 to 12 are in pruning.cpp. 7 to 10 are guesses: they need a zero window, because an open one
// wants a line and an exact score; a side with pieces, because in pawn endings having to move can
// be a burden (zugzwang); and a table that does not predict the opposite. Razoring and reverse
// futility save most where most nodes are, on the last three plies; ProbCut and the null move pay
// for their own search with whole subtrees further up. In check 7, 8 and 10 are out: the evaluation
// says nothing there.

#include "search/node.h"

#include <algorithm>
#include <cassert>

#include "board/draw.h"
#include "search/depths.h"
#include "search/pruning.h"
#include "search/score.h"
#include "search/search.h"
#include "search/searcher.h"
#include "search/strength.h"
#include "search/tablebases.h"

namespace quon {

namespace {

// Margins are centipawns, depths plies.
constexpr int TWOFOLD_PLY = 4;  // from here on one earlier occurrence is a draw
constexpr int TT_PV_PLY = 11;   // open-window nodes up to here take no cut-offs from the table

constexpr u64 NODE_GRACE = 100000;  // beyond the node limit, for a search without a move of depth 2
constexpr u64 KEEP_ON_NODES = 8192;  // between two looks of a search on the main thread, some 5 ms

// 1. At the node limit the search ends, but not without a move of depth 2 unless that is far off.
bool node_limit_reached(const ThreadData& t) {
    return t.nodes > t.node_limit &&
           (t.best_depth >= FIRST_RESULT_DEPTH || t.nodes > t.node_limit + NODE_GRACE);
}

void look_around(ThreadData& t) {
    SearchControl& control = t.shared->control;
    if (node_limit_reached(t)) control.stop_flag = STOP;
    if (t.nodes <= t.keep_on_at) return;
    if (!(*t.keep_on)()) control.stop_flag = ABORT;
    schedule_look(t);
}

// Counts the node, holds it back under a node-rate cap, and looks around when that is due.
void count_node(ThreadData& t, int depth) {
    const Searcher& s = *t.shared;
    t.nodes.add(1);
    if (depth >= 1 && s.settings.target_nps < NO_NPS_LIMIT && s.run.current_depth > 1) throttle(t);
    if (t.nodes > t.look_at) look_around(t);
}

void start_record(Node& node) {
    PlyRecord& record = node.record;
    record.depth = node.depth;
    record.alpha = node.alpha;
    record.beta = node.beta;
    record.eval_final = 0;
    record.move_count = 0;
    record.hash_move = NO_MOVE;
    record.in_iid = false;
    record.singular = false;
    record.tb_result = NO_TB_RESULT;
    PlyRecord& grandchild = node.t.plies[node.ply + 2];
    grandchild.killer_null = grandchild.killer1 = grandchild.killer2 = grandchild.killer_evasion =
        NO_MOVE;
    end_line(node.t, node.ply, NO_MOVE);
}

// 6. Transposition table.
void tt_probe(Node& node) {
    node.t.hash_probes.add(1);
    node.tt = hash_probe(node.t.shared->hash, node.position());
    if (!node.tt.hit()) return;
    node.t.hash_hits.add(1);
    node.record.hash_move = node.tt.move;
    node.tt.score = i16(score_from_tt(node.tt.score, node.ply));
}

// Narrows the window to what the table knows; true when nothing is left to search.
bool tt_cutoff(Node& node) {
    const HashEntry& tt = node.tt;
    if (!tt.hit() || node.depth > tt.depth) return false;
    if (node.zero_window) {
        if (tt.score > node.alpha && tt.bound != UPPER_BOUND) {
            node.alpha = tt.score;
        } else if (tt.score < node.beta && tt.bound != LOWER_BOUND) {
            node.beta = tt.score;
        }
    } else if (node.ply > TT_PV_PLY && tt.bound == EXACT_BOUND) {
        node.alpha = std::max<int>(node.alpha, tt.score);
        node.beta = std::min<int>(node.beta, tt.score);
    }
    return node.alpha >= node.beta;
}

void tt_predict(Node& node) {
    if (!node.tt.hit()) return;
    node.tt_fail_low = node.tt.score <= node.alpha && node.tt.bound != LOWER_BOUND;
    node.tt_fail_high = node.tt.score >= node.beta && node.tt.bound != UPPER_BOUND;
}

}  // namespace

void schedule_look(ThreadData& t) {
    t.keep_on_at = t.keep_on != nullptr ? t.nodes + KEEP_ON_NODES : NO_NODE_LIMIT;
    t.look_at = std::min(t.node_limit, t.keep_on_at);
}

void end_line(ThreadData& t, int ply, Move move) {
    auto& line = t.pv[ply];
    line[ply] = move;
    line[ply + 1] = NO_MOVE;
}

void extend_line(ThreadData& t, int ply) {
    auto& line = t.pv[ply];
    const auto& child = t.pv[ply + 1];
    int at = ply + 1;
    while (at < MAX_PLY && child[at] != NO_MOVE) {
        line[at] = child[at];
        ++at;
    }
    line[at] = NO_MOVE;
}

int search_node(ThreadData& t, int ply, int depth, int alpha, int beta, bool zero_window) {
    assert(alpha < beta);
    assert(1 < ply && ply <= LAST_SEARCHED_PLY + 1);
    // 1. Count and stop.
    count_node(t, depth);
    if (stopped(t)) return 0;
    if (t.sel_depth < ply) t.sel_depth = u8(ply);

    // 2. Mate distance: a mate already found closer to the root cannot be improved here.
    alpha = std::max(alpha, mated_in(ply));
    beta = std::min(beta, mate_in(ply) - 1);
    if (alpha >= beta) return alpha;

    // 3. Draws.
    Position& p = t.position;
    Node node{.t = t,
              .record = t.plies[ply],
              .ply = ply,
              .depth = depth,
              .alpha = alpha,
              .beta = beta,
              .zero_window = zero_window,
              .in_check = in_check(p)};
    start_record(node);
    if (is_draw(p, ply < TWOFOLD_PLY ? 3 : 2)) return DRAW_SCORE;

    // 4. Tablebases.
    int score = 0;
    if (tb_probe_node(t, ply, depth, alpha, beta, score)) return score;

    // 5. Static evaluation and the horizon.
    node.eval = evaluate_node(t, ply, node.in_check);
    node.record.static_eval = node.eval;
    if (node.record.eval_final && !node.in_check) return node.eval;
    if (ply > LAST_SEARCHED_PLY) return node.in_check ? DRAW_SCORE : node.eval;
    if (depth < 1 && !node.in_check) return qsearch(t, ply, depth, alpha, beta, zero_window);

    // 6. Transposition table.
    tt_probe(node);
    if (tt_cutoff(node)) return node.alpha;
    tt_predict(node);

    // 7 to 10. Forward pruning.
    if (!node.in_check) {
        if (razoring(node, score)) return score;
        if (static_eval_pruning(node)) return node.beta;
    }
    if (probcut(node)) return node.beta;
    if (null_move(node, score)) return score;

    // 11, 12. The move to try first, and whether it stands alone.
    int expected = expected_value(node);
    if (internal_iterative_deepening(node, expected, score)) return score;
    mark_singular(node, expected);

    // 13. The moves.
    score = search_moves(node, depth, node.alpha, node.beta);
    return std::clamp(score, node.alpha, node.beta);
}

}  // namespace quon
