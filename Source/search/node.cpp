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
// 7 to 10 are guesses: they need a zero window, because an open one wants a line and an exact
// score; a side with pieces, because in pawn endings having to move can be a burden (zugzwang); and
// a table that does not predict the opposite. Razoring and reverse futility save most where most
// nodes are, on the last three plies; ProbCut and the null move pay for their own search with whole
// subtrees further up. In check 7, 8 and 10 are out: the evaluation says nothing there.

#include "search/node.h"

#include <algorithm>

#include "board/draw.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/see.h"
#include "search/depths.h"
#include "search/history.h"
#include "search/picker.h"
#include "search/score.h"
#include "search/search.h"
#include "search/searcher.h"
#include "search/strength.h"
#include "search/tablebases.h"

namespace quon {

namespace {

// Margins are centipawns, depths plies.
constexpr int TWOFOLD_PLY = 4;      // from here on one earlier occurrence is a draw
constexpr int TT_PV_PLY = 11;       // open-window nodes up to here take no cut-offs from the table
constexpr int MINOR_PIECE_NPM = 3;  // one minor piece's material

constexpr int REVERSE_FUTILITY_MARGIN = 25;  // on top of half the threat against the side
constexpr int SAFE_DEPTH = 3;                // below: also without the full margin if nothing hangs
constexpr int SAFE_MARGIN = 99;

constexpr int PROBCUT_DEPTH = 4;  // above
constexpr int PROBCUT_REDUCTION = 3;
constexpr int PROBCUT_EVAL_MARGIN = 24;
constexpr int PROBCUT_MARGIN = 125;
constexpr int PROBCUT_EXCHANGE = 99;  // a capture must win more than this

constexpr int NULL_MOVE_MARGIN = 11;
constexpr int NULL_MOVE_R = 3;
constexpr int NULL_MOVE_DEEP_R = 4;  // at depths above NULL_MOVE_DEEP_DEPTH with pieces enough
constexpr int NULL_MOVE_DEEP_DEPTH = 7;
constexpr int NULL_MOVE_DEEP_NPM = 5;
constexpr int NULL_MOVE_TRUSTED_DEPTH = 5;  // up to here the cut-off is not verified
constexpr int NULL_MOVE_VERIFY_REDUCTION = 5;

constexpr int IID_DEPTH = 4;  // from here on
constexpr int IID_DEEP_DEPTH = 7;
constexpr int IID_ZERO_WINDOW_REDUCTION = 5;
constexpr int IID_PV_REDUCTION = 3;
constexpr int IID_MARGIN = 199;

constexpr int SINGULAR_DEPTH = 7;  // above
constexpr int SINGULAR_REDUCTION = 7;
constexpr int SINGULAR_MARGIN = 50;

constexpr u64 NODE_GRACE = 100000;  // beyond the node limit, for a search without a move of depth 2
constexpr u64 KEEP_ON_NODES = 8192;  // between two looks of a search on the main thread, some 5 ms

// 1. At the node limit the search ends, but not without a move of depth 2 unless that is far off.
bool node_limit_reached(const ThreadData& t) {
    return t.nodes > t.node_limit && (t.best_depth > 1 || t.nodes > t.node_limit + NODE_GRACE);
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

// 7. Razoring: so far below alpha near the horizon that only captures could help; if they do not,
// their score is the node's.
bool razoring(const Node& node, int& score) {
    const SearchParams& search_params = node.t.shared->search_params;
    const bool hopeless = node.depth <= search_params.FP_depth &&
                          node.eval <= node.alpha - search_params.FP_margin * node.depth &&
                          node.zero_window && !node.tt_fail_high &&
                          node.enemy_npm() > MINOR_PIECE_NPM;
    if (!hopeless) return false;
    score = qsearch(node.t, node.ply, node.depth, node.alpha, node.beta, node.zero_window);
    return score <= node.alpha;
}

// True if no piece of the side to move is en prise by more than what its evaluation has to spare.
bool threats_safe(const Position& p, int eval, int beta) {
    Bitboard pieces = p.bb[p.side][0] & ~p.bb[p.side][KING];
    while (pieces) {
        const int loss = see(p, p.side ^ 1, NO_SQUARE, pop_square(pieces));
        if (loss >= 1 && eval - loss <= beta + SAFE_MARGIN) return false;
    }
    return true;
}

// 8. Reverse futility pruning, also called static null move: so far above beta near the horizon
// that a quiet reply will not catch up.
bool static_eval_pruning(const Node& node) {
    const SearchParams& search_params = node.t.shared->search_params;
    const int threat = node.record.threat[node.position().side];
    const bool comfortable = node.depth <= search_params.SEP_depth &&
                             node.eval >= node.beta + threat / 2 + REVERSE_FUTILITY_MARGIN &&
                             !node.tt_fail_low && node.zero_window &&
                             node.own_npm() > MINOR_PIECE_NPM;
    if (!comfortable) return false;
    if (node.eval >= node.beta + search_params.SEP_margin * node.depth) return true;
    return node.depth < SAFE_DEPTH && threats_safe(node.position(), node.eval, node.beta);
}

// True if some capture refutes the node at the threshold in a search of `depth` plies.
bool probcut_test(ThreadData& t, int ply, int depth, int threshold) {
    Position& p = t.position;
    PlyRecord& record = t.plies[ply];
    const KingGuard guard = king_guard(p, false);
    list_captures(t, ply);
    for (MoveEntry* entry = record.list_start; select_best(entry); ++entry) {
        record.next_pick = entry;
        if (!is_legal(p, entry->move, guard)) continue;
        const int exchange = see(p, p.side, move_from(entry->move), move_to(entry->move));
        if (exchange <= PROBCUT_EXCHANGE) continue;
        trace_before_make(t, entry->move);
        make_move(p, entry->move);
        const int score = -search_node(t, ply + 1, depth - 1, -threshold, 1 - threshold, true);
        unmake_move(p);
        if (score >= threshold) return true;
    }
    return false;
}

// 9. ProbCut. Never in check: such a node's evaluation lies below every beta.
bool probcut(const Node& node) {
    return node.depth > PROBCUT_DEPTH && node.eval > node.beta + PROBCUT_EVAL_MARGIN &&
           !node.tt_fail_low && node.zero_window && node.own_npm() > MINOR_PIECE_NPM &&
           probcut_test(node.t, node.ply, node.depth - PROBCUT_REDUCTION,
                        node.beta + PROBCUT_MARGIN);
}

// Game moves before the root are never null moves.
bool after_null_move(const ThreadData& t, int ply) {
    return t.undo[t.game_ply - 1].move == NO_MOVE ||
           (ply > 2 && t.undo[t.game_ply - 2].move == NO_MOVE);
}

// 10. Null move: if even passing the turn holds beta in a search reduced by R plies, the node will:
// at once near the horizon, after a shallower search of the node's own moves elsewhere.
bool null_move(const Node& node, int& score) {
    const bool tempting = node.depth >= node.t.shared->search_params.NMP_depth &&
                          node.eval > node.beta + NULL_MOVE_MARGIN && !node.tt_fail_low &&
                          !node.in_check && node.zero_window && node.own_npm() > 0 &&
                          !after_null_move(node.t, node.ply);
    if (!tempting) return false;
    const bool deep = node.depth > NULL_MOVE_DEEP_DEPTH && node.own_npm() > NULL_MOVE_DEEP_NPM;
    const int r = deep ? NULL_MOVE_DEEP_R : NULL_MOVE_R;
    const int child_depth = std::max(node.depth - r - 1, 0);
    ThreadData& t = node.t;
    trace_before_make(t, NO_MOVE);
    make_null_move(t.position);
    node.record.next_pick = &NULL_ENTRY;
    const int reply =
        -search_node(t, node.ply + 1, child_depth, -node.beta, -node.alpha, node.zero_window);
    unmake_null_move(t.position);
    if (reply < node.beta) return false;
    score =
        node.depth <= NULL_MOVE_TRUSTED_DEPTH
            ? node.beta
            : search_moves(node, node.depth - NULL_MOVE_VERIFY_REDUCTION, node.alpha, node.beta);
    return true;
}

int expected_value(const Node& node) {
    if (node.tt_move_depth() < 1) return node.eval;
    return node.tt.bound == UPPER_BOUND ? node.alpha : node.tt.score;
}

// 11. Internal iterative deepening: without a hash move worth the depth, a shallower search of this
// node finds one. `expected` becomes its score; true when that already settles the node with
// `score`.
bool internal_iterative_deepening(const Node& node, int& expected, int& score) {
    if (node.depth < IID_DEPTH) return false;
    const int reduced = node.depth < IID_DEEP_DEPTH ? 1 : node.depth - IID_ZERO_WINDOW_REDUCTION;
    const int target = node.zero_window ? reduced : node.depth - IID_PV_REDUCTION;
    if (node.tt_move_depth() >= target || node.eval < node.alpha - IID_MARGIN) return false;

    node.record.in_iid = true;
    expected = search_moves(node, target, node.alpha, node.beta);
    node.record.in_iid = false;
    if (expected > node.alpha) {
        node.record.hash_move = node.t.pv[node.ply][node.ply];
    } else if (is_loss(expected)) {
        score = node.alpha;
        return true;
    }
    score = node.beta;
    return is_win(expected) && expected >= node.beta;
}

// True if every other move stays at or below the threshold in a search of `depth` plies.
bool singular_test(const Node& node, int depth, int threshold, Move move) {
    ThreadData& t = node.t;
    Position& p = t.position;
    const KingGuard guard = king_guard(p, node.in_check);
    if (!is_pseudo_legal(p, move) || !is_legal(p, move, guard)) return false;
    node.record.stage = PickStage::START;
    while (const MoveEntry* entry = next_move(t, node.ply, node.in_check)) {
        if (entry->move == move || !is_legal(p, entry->move, guard)) continue;
        trace_before_make(t, entry->move);
        make_move(p, entry->move);
        const int score =
            -search_node(t, node.ply + 1, depth - 1, -threshold - 1, -threshold, true);
        unmake_move(p);
        if (score > threshold || stopped(t)) return false;
    }
    return true;
}

// 12. Singular extension: marks the node whose hash move stands alone; the move loop extends it.
void mark_singular(const Node& node, int expected) {
    const Move move = node.record.hash_move;
    if (node.depth <= SINGULAR_DEPTH || move == NO_MOVE) return;
    if (!node.t.shared->search_params.SingularExtension) return;
    if (expected < node.beta || node.tt_move_depth() <= 0) return;
    node.record.singular =
        singular_test(node, node.depth - SINGULAR_REDUCTION, node.beta - SINGULAR_MARGIN, move);
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
    if (depth > 0) hash_prefetch(t.shared->hash, p);
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
