// The node below the root, up to the point where its moves are tried: draws, the table, and every
// kind of forward pruning, in a fixed order.

#include <algorithm>

#include "board/draw.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/see.h"
#include "frontend/engine_options.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/history.h"
#include "search/picker.h"
#include "search/score.h"
#include "search/search.h"
#include "search/search_params.h"
#include "search/search_trace.h"
#include "search/strength.h"
#include "search/tablebases.h"

namespace quon {

namespace {

constexpr int LAST_PLY = 65;        // deeper nodes return their evaluation
constexpr int TWOFOLD_PLY = 4;      // from here on one earlier occurrence is a draw
constexpr int PV_TABLE_PLY = 11;    // open-window nodes up to here take no table cut-offs
constexpr int MINOR_PIECE_NPM = 3;  // one minor piece's material
constexpr int PROBCUT_MARGIN = 125;
constexpr int PROBCUT_EXCHANGE = 99;  // a capture must win more than this
constexpr int THREAT_MARGIN = 25;
constexpr int PROBCUT_EVAL_MARGIN = 24;
constexpr int NULL_MOVE_MARGIN = 11;
constexpr int DEEPENING_MARGIN = 199;
constexpr int SAFE_MARGIN = 99;
constexpr int SINGULAR_MARGIN = 50;
constexpr u64 NODE_GRACE = 100000;  // beyond the node limit, for a search without a move of depth 2
constexpr u64 KEEP_ON_NODES = 8192;  // between two looks of a search on the main thread, some 5 ms

struct Node {
    ThreadData& t;
    PlyRecord& record;
    int ply;
    int depth;
    int alpha;
    int beta;
    int node_type;
    bool in_check;
    int eval = 0;
    HashEntry tt{};
    bool tt_fail_low = false;   // the table predicts a score of at most alpha
    bool tt_fail_high = false;  // the table predicts a score of at least beta

    [[nodiscard]] bool zero_window() const { return node_type != 0; }
    [[nodiscard]] const Position& position() const { return t.position; }
    [[nodiscard]] int own_npm() const { return position().npm[position().side]; }
    [[nodiscard]] int enemy_npm() const { return position().npm[position().side ^ 1]; }
    // Depth behind the table's move, 0 without one.
    [[nodiscard]] int tt_move_depth() const {
        return tt.hit() && tt.move != NO_MOVE ? tt.depth : 0;
    }
};

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
    auto& line = node.t.pv[node.ply];
    line[node.ply] = line[node.ply + 1] = NO_MOVE;
}

void probe_table(Node& node) {
    node.t.hash_probes.add(1);
    node.tt = hash_probe(node.position());
    if (!node.tt.hit()) return;
    node.t.hash_hits.add(1);
    node.record.hash_move = node.tt.move;
    node.tt.score = i16(score_from_table(node.tt.score, node.ply));
}

// Narrows the window to what the table knows; true when nothing is left to search.
bool table_cutoff(Node& node) {
    const HashEntry& tt = node.tt;
    if (!tt.hit() || node.depth > tt.depth) return false;
    if (node.zero_window()) {
        if (tt.score > node.alpha && tt.bound != UPPER_BOUND) {
            node.alpha = tt.score;
        } else if (tt.score < node.beta && tt.bound != LOWER_BOUND) {
            node.beta = tt.score;
        }
    } else if (node.ply > PV_TABLE_PLY && tt.bound == EXACT_BOUND) {
        node.alpha = std::max<int>(node.alpha, tt.score);
        node.beta = std::min<int>(node.beta, tt.score);
    }
    return node.alpha >= node.beta;
}

void predict_from_table(Node& node) {
    if (!node.tt.hit()) return;
    node.tt_fail_low = node.tt.score <= node.alpha && node.tt.bound != LOWER_BOUND;
    node.tt_fail_high = node.tt.score >= node.beta && node.tt.bound != UPPER_BOUND;
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

// Far below alpha near the horizon: only captures could help, so let them try.
bool razoring(const Node& node, int& score) {
    const bool hopeless = node.depth <= search_params.FP_depth &&
                          node.eval <= node.alpha - search_params.FP_margin * node.depth &&
                          node.zero_window() && !node.tt_fail_high &&
                          node.enemy_npm() > MINOR_PIECE_NPM;
    if (!hopeless) return false;
    score = qsearch(node.t, node.ply, node.depth, node.alpha, node.beta, node.node_type);
    return score <= node.alpha;
}

// So far above beta near the horizon that a quiet reply will not catch up.
bool static_eval_pruning(const Node& node) {
    const int threat = node.record.threat[node.position().side];
    const bool comfortable = node.depth <= search_params.SEP_depth &&
                             node.eval >= node.beta + threat / 2 + THREAT_MARGIN &&
                             !node.tt_fail_low && node.zero_window() &&
                             node.own_npm() > MINOR_PIECE_NPM;
    if (!comfortable) return false;
    if (node.eval >= node.beta + search_params.SEP_margin * node.depth) return true;
    return node.depth < 3 && threats_safe(node.position(), node.eval, node.beta);
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
        const int score = -search_node(t, ply + 1, depth - 1, -threshold, 1 - threshold, -1);
        unmake_move(p);
        if (score >= threshold) return true;
    }
    return false;
}

// Never in check: such a node's evaluation lies below every beta.
bool probcut(const Node& node) {
    return node.depth > 4 && node.eval > node.beta + PROBCUT_EVAL_MARGIN && !node.tt_fail_low &&
           node.zero_window() && node.own_npm() > MINOR_PIECE_NPM &&
           probcut_test(node.t, node.ply, node.depth - 3, node.beta + PROBCUT_MARGIN);
}

// Game moves before the root are never null moves.
bool after_null_move(const ThreadData& t, int ply) {
    return t.undo[t.game_ply - 1].move == NO_MOVE ||
           (ply > 2 && t.undo[t.game_ply - 2].move == NO_MOVE);
}

// If even passing the turn holds beta, the node will: at once near the horizon, after a shallower
// search of the node's own moves elsewhere.
bool null_move(const Node& node, int& score) {
    const bool tempting = node.depth >= search_params.NMP_depth &&
                          node.eval > node.beta + NULL_MOVE_MARGIN && !node.tt_fail_low &&
                          !node.in_check && node.zero_window() && node.own_npm() > 0 &&
                          !after_null_move(node.t, node.ply);
    if (!tempting) return false;
    const int reduction = node.depth > 7 && node.own_npm() > 5 ? 4 : 3;
    const int child_depth = std::max(node.depth - reduction - 1, 0);
    ThreadData& t = node.t;
    trace_before_make(t, NO_MOVE);
    make_null_move(t.position);
    node.record.next_pick = &NULL_ENTRY;
    const int reply =
        -search_node(t, node.ply + 1, child_depth, -node.beta, -node.alpha, -node.node_type);
    unmake_null_move(t.position);
    if (reply < node.beta) return false;
    score = node.depth <= 5 ? node.beta
                            : search_moves(t, node.ply, node.depth - 5, node.alpha, node.beta,
                                           false, node.node_type);
    return true;
}

int expected_value(const Node& node) {
    if (node.tt_move_depth() < 1) return node.eval;
    return node.tt.bound == UPPER_BOUND ? node.alpha : node.tt.score;
}

// Without a table move worth the depth, a shallower search of this node finds one. `expected`
// becomes its score; true when that already settles the node with `score`.
bool internal_iterative_deepening(const Node& node, int& expected, int& score) {
    if (node.depth < 4) return false;
    const int reduced = node.depth < 7 ? 1 : node.depth - 5;
    const int target = node.zero_window() ? reduced : node.depth - 3;
    if (node.tt_move_depth() >= target || node.eval < node.alpha - DEEPENING_MARGIN) return false;

    node.record.in_iid = true;
    expected = search_moves(node.t, node.ply, target, node.alpha, node.beta, node.in_check,
                            node.node_type);
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
bool singular_test(ThreadData& t, int ply, int depth, int threshold, bool in_check, Move move) {
    Position& p = t.position;
    const KingGuard guard = king_guard(p, in_check);
    if (!is_pseudo_legal(p, move) || !is_legal(p, move, guard)) return false;
    t.plies[ply].stage = PickStage::START;
    while (const MoveEntry* entry = next_move(t, ply, in_check)) {
        if (entry->move == move || !is_legal(p, entry->move, guard)) continue;
        trace_before_make(t, entry->move);
        make_move(p, entry->move);
        const int score = -search_node(t, ply + 1, depth - 1, -threshold - 1, -threshold, -1);
        unmake_move(p);
        if (score > threshold || stopped()) return false;
    }
    return true;
}

void mark_singular(const Node& node, int expected) {
    const Move move = node.record.hash_move;
    if (node.depth <= 7 || move == NO_MOVE || !search_params.SingularExtension) return;
    if (expected < node.beta || node.tt_move_depth() <= 0) return;
    node.record.singular = singular_test(node.t, node.ply, node.depth - 7,
                                         node.beta - SINGULAR_MARGIN, node.in_check, move);
}

// At the node limit the search ends, but not without a move of depth 2 unless that is far off.
bool node_limit_reached(const ThreadData& t) {
    return t.nodes > t.node_limit && (t.best_depth > 1 || t.nodes > t.node_limit + NODE_GRACE);
}

void look_around(ThreadData& t) {
    if (node_limit_reached(t)) control.stop_flag = STOP;
    if (t.nodes <= t.keep_on_at) return;
    if (!(*t.keep_on)()) control.stop_flag = ABORT;
    schedule_look(t);
}

// Takes part in every node: counts it, holds it back under a node-rate cap, and looks around when
// that is due.
void count_node(ThreadData& t, int depth) {
    t.nodes.add(1);
    if (depth >= 1 && options.target_nps < NO_NPS_LIMIT && run.current_depth > 1) throttle(t);
    if (t.nodes > t.look_at) look_around(t);
}

}  // namespace

void schedule_look(ThreadData& t) {
    t.keep_on_at = t.keep_on != nullptr ? t.nodes + KEEP_ON_NODES : NO_NODE_LIMIT;
    t.look_at = std::min(t.node_limit, t.keep_on_at);
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

int search_node(ThreadData& t, int ply, int depth, int alpha, int beta, int node_type) {
    count_node(t, depth);
    if (stopped()) return 0;
    if (t.sel_depth < ply) t.sel_depth = u8(ply);

    // A mate already found closer to the root cannot be improved here.
    alpha = std::max(alpha, mated_in(ply));
    beta = std::min(beta, mate_in(ply) - 1);
    if (alpha >= beta) return alpha;

    Position& p = t.position;
    Node node{t, t.plies[ply], ply, depth, alpha, beta, node_type, in_check(p)};
    start_record(node);
    if (is_draw(p, ply < TWOFOLD_PLY ? 3 : 2)) return DRAW_SCORE;

    int score = 0;
    if (probe_node(t, ply, depth, alpha, beta, score)) return score;
    if (depth > 0) hash_prefetch(p);
    node.eval = evaluate_node(t, ply, node.in_check);
    node.record.static_eval = node.eval;
    if (node.record.eval_final && !node.in_check) return node.eval;
    if (ply > LAST_PLY) return node.in_check ? DRAW_SCORE : node.eval;
    if (depth < 1 && !node.in_check) return qsearch(t, ply, depth, alpha, beta, node_type);

    probe_table(node);
    if (table_cutoff(node)) return node.alpha;
    predict_from_table(node);

    if (!node.in_check) {
        if (razoring(node, score)) return score;
        if (static_eval_pruning(node)) return node.beta;
    }
    if (probcut(node)) return node.beta;
    if (null_move(node, score)) return score;

    int expected = expected_value(node);
    if (internal_iterative_deepening(node, expected, score)) return score;
    mark_singular(node, expected);

    score = search_moves(t, ply, depth, node.alpha, node.beta, node.in_check, node_type);
    return std::clamp(score, node.alpha, node.beta);
}

}  // namespace quon
