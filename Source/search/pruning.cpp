// Steps 7 to 12 of a node; node.cpp tells when each is allowed and why they stand in this order.

#include "search/pruning.h"

#include <algorithm>

#include "board/legality.h"
#include "board/make.h"
#include "board/see.h"
#include "search/descend.h"
#include "search/history.h"
#include "search/picker.h"
#include "search/score.h"
#include "search/search.h"
#include "search/searcher.h"

namespace quon {

namespace {

// Margins are centipawns, depths plies.
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

}  // namespace

// 7. Razoring.
bool razoring(const Node& node, int& score) {
    const EvalParams& params = node.t.shared->params;
    const bool hopeless =
        node.depth <= params.FP_depth && node.eval <= node.alpha - params.FP_margin * node.depth &&
        node.zero_window && !node.tt_fail_high && node.enemy_npm() > MINOR_PIECE_NPM;
    if (!hopeless) return false;
    score = qsearch(node.t, node.ply, node.depth, node.alpha, node.beta, node.zero_window);
    return score <= node.alpha;
}

namespace {

// True if no piece of the side to move is en prise by more than what its evaluation has to spare.
bool threats_safe(const Position& p, int eval, int beta) {
    Bitboard pieces = p.bb[p.side][0] & ~p.bb[p.side][KING];
    while (pieces) {
        const int loss = see(p, p.side ^ 1, NO_SQUARE, pop_square(pieces));
        if (loss >= 1 && eval - loss <= beta + SAFE_MARGIN) return false;
    }
    return true;
}

}  // namespace

// 8. Reverse futility.
bool static_eval_pruning(const Node& node) {
    const EvalParams& params = node.t.shared->params;
    const int threat = node.record.threat[node.position().side];
    const bool comfortable = node.depth <= params.SEP_depth &&
                             node.eval >= node.beta + threat / 2 + REVERSE_FUTILITY_MARGIN &&
                             !node.tt_fail_low && node.zero_window &&
                             node.own_npm() > MINOR_PIECE_NPM;
    if (!comfortable) return false;
    if (node.eval >= node.beta + params.SEP_margin * node.depth) return true;
    return node.depth < SAFE_DEPTH && threats_safe(node.position(), node.eval, node.beta);
}

namespace {

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
        descend(t, entry->move, true);
        const int score = -search_node(t, ply + 1, depth - 1, -threshold, 1 - threshold, true);
        unmake_move(p);
        if (score >= threshold) return true;
    }
    return false;
}

}  // namespace

// 9. ProbCut. Never in check: such a node's evaluation lies below every beta.
bool probcut(const Node& node) {
    return node.depth > PROBCUT_DEPTH && node.eval > node.beta + PROBCUT_EVAL_MARGIN &&
           !node.tt_fail_low && node.zero_window && node.own_npm() > MINOR_PIECE_NPM &&
           probcut_test(node.t, node.ply, node.depth - PROBCUT_REDUCTION,
                        node.beta + PROBCUT_MARGIN);
}

namespace {

// Game moves before the root are never null moves.
bool after_null_move(const ThreadData& t, int ply) {
    return t.undo[t.game_ply - 1].move == NO_MOVE ||
           (ply > 2 && t.undo[t.game_ply - 2].move == NO_MOVE);
}

}  // namespace

// 10. Null move: the cut-off is trusted near the horizon; elsewhere a shallower search of the
// node's own moves verifies it.
bool null_move(const Node& node, int& score) {
    const bool tempting = node.depth >= node.t.shared->params.NMP_depth &&
                          node.eval > node.beta + NULL_MOVE_MARGIN && !node.tt_fail_low &&
                          !node.in_check && node.zero_window && node.own_npm() > 0 &&
                          !after_null_move(node.t, node.ply);
    if (!tempting) return false;
    const bool deep = node.depth > NULL_MOVE_DEEP_DEPTH && node.own_npm() > NULL_MOVE_DEEP_NPM;
    const int r = deep ? NULL_MOVE_DEEP_R : NULL_MOVE_R;
    const int child_depth = std::max(node.depth - r - 1, 0);
    ThreadData& t = node.t;
    descend(t, NO_MOVE, child_depth > 0);
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

// 11. Internal iterative deepening.
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

namespace {

// True if every other move stays at or below the threshold in a search of `depth` plies.
bool singular_test(const Node& node, int depth, int threshold, Move move) {
    ThreadData& t = node.t;
    Position& p = t.position;
    const KingGuard guard = king_guard(p, node.in_check);
    if (!is_pseudo_legal(p, move) || !is_legal(p, move, guard)) return false;
    node.record.stage = PickStage::START;
    while (const MoveEntry* entry = next_move(t, node.ply, node.in_check)) {
        if (entry->move == move || !is_legal(p, entry->move, guard)) continue;
        descend(t, entry->move, true);
        const int score =
            -search_node(t, node.ply + 1, depth - 1, -threshold - 1, -threshold, true);
        unmake_move(p);
        if (score > threshold || stopped(t)) return false;
    }
    return true;
}

}  // namespace

// 12. Singular extension.
void mark_singular(const Node& node, int expected) {
    const Move move = node.record.hash_move;
    if (node.depth <= SINGULAR_DEPTH || move == NO_MOVE) return;
    if (!node.t.shared->params.SingularExtension) return;
    if (expected < node.beta || node.tt_move_depth() <= 0) return;
    node.record.singular =
        singular_test(node, node.depth - SINGULAR_REDUCTION, node.beta - SINGULAR_MARGIN, move);
}

}  // namespace quon
