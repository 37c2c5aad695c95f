// One iteration over the root moves: aspiration windows, and a principal variation that is resolved
// step by step when a move fails high or low.

#include <algorithm>
#include <cstdlib>

#include "board/make.h"
#include "frontend/engine_options.h"
#include "search/control.h"
#include "search/move_flags.h"
#include "search/picker.h"
#include "search/report.h"
#include "search/result.h"
#include "search/score.h"
#include "search/search.h"
#include "search/search_trace.h"

namespace quon {

namespace {

constexpr double CURRMOVE_AFTER = 3.5;   // seconds
constexpr double ABANDON_AFTER = 0.025;  // seconds, for a worker behind the main thread
constexpr int SLOW_NPS = 15000;          // at or below: no full windows for later moves at depth 1
constexpr int INTERRUPTED_MARGIN = 25;

// One iteration over the root moves.
struct RootSearch {
    ThreadData& t;
    int depth;
    int pv_index;
    bool checked;
    bool verbose;  // bounds are reported while they are resolved
    int previous;  // score of the last iteration
    int width;     // half of the aspiration window
    int alpha0;
    int beta0;
    int alpha = NO_SCORE;
    int best = NO_SCORE;
};

struct RootMove {
    MoveEntry* entry;
    int flags;
    int extended;
    int reduction;
    int score = NO_SCORE;  // of the last search that ended before the stop
    bool interrupted = false;
};

RootSearch start_root_search(ThreadData& t, int depth, int pv_index) {
    const int previous = t.root_score;
    const int width = depth == 1   ? MATE
                      : depth == 2 ? 100
                                   : std::max(4 * (15 - depth), 15) + std::abs(previous) / 16;
    const int low = previous - width;
    const int high = previous + width;
    return {.t = t,
            .depth = depth,
            .pv_index = pv_index,
            .checked = in_check(t.position),
            .verbose = is_main(t) && run.multipv == 1 && pv_index == 0 && depth > 3,
            .previous = previous,
            .width = width,
            .alpha0 = is_loss(low) ? -MATE : low,
            .beta0 = is_win(high) ? MATE : high};
}

// Sixteenths of a ply; captures count for more than deeper in the tree.
int root_extension_share(const Position& p, const MoveEntry& entry, int flags) {
    if (flags & DISCOVERED_CHECK) return 16;
    if ((flags & (CHECK | PAWN_TO_SEVENTH)) && !loses_material(p, entry)) return 16;
    return flags & CAPTURE ? 8 : 0;
}

// The accumulator starts from 0 for every root move.
int root_extension(ThreadData& t, const MoveEntry& entry, int flags) {
    const int gathered = root_extension_share(t.position, entry, flags);
    t.ext_acc = gathered % 16;
    return gathered / 16;
}

int root_reduction(const RootSearch& s, const RootMove& move) {
    const Position& p = s.t.position;
    const bool reducible = !move.extended && run.multipv == 1 && s.depth > 7 &&
                           s.t.plies[1].move_count > 5 && s.best >= s.previous - 34 &&
                           !is_loss(s.best) && !s.checked && move.flags == 0 && p.npm[p.side] > 0 &&
                           pawn_count(p, p.side) > 0;
    return reducible ? 1 : 0;
}

// A score from below the root; a search cut short by the stop leaves the last one standing.
int search_root_move(RootSearch& s, RootMove& move, int child_depth, int alpha, int beta,
                     int node_type) {
    const int score = -search_node(s.t, 2, child_depth, -beta, -alpha, node_type);
    move.interrupted = stopped();
    if (!move.interrupted) move.score = score;
    return score;
}

// The move that is being resolved and its bound, for the time check and the front end.
void show_bound(RootSearch& s, const RootMove& move, RootState state) {
    ThreadData& t = s.t;
    t.root_state = u8(state);
    t.root_score = i16(move.score);
    if (t.root_line[1] != move.entry->move) t.root_line[2] = NO_MOVE;
    t.root_line[1] = move.entry->move;
    if (s.verbose && output_due()) print_info(t.index, -1, s.depth, t.root_score, t.root_line);
}

// First move: the aspiration window opens until the score lies inside.
void search_open(RootSearch& s, RootMove& move) {
    const int child_depth = s.depth + move.extended - 1;
    int score = search_root_move(s, move, child_depth, s.alpha0, s.beta0, 0);
    while ((score <= s.alpha0 || score >= s.beta0) && !move.interrupted) {
        const bool high = score >= s.beta0;
        show_bound(s, move, high ? FAIL_HIGH : FAIL_LOW);
        s.width = std::max(2 * s.width, 25);
        if (high) {
            s.beta0 += s.width;
        } else {
            s.alpha0 -= s.width;
        }
        if (is_loss(s.alpha0)) s.alpha0 = -MATE;
        if (is_win(s.beta0)) s.beta0 = MATE;
        score = search_root_move(s, move, child_depth, s.alpha0, s.beta0, 0);
    }
    s.alpha = s.alpha0;
}

// Later moves: a zero window above the best score, opened step by step when the move beats it.
void search_later(RootSearch& s, RootMove& move) {
    const int child_depth = s.depth + move.extended - 1;
    s.alpha = is_loss(s.best) ? -MATE : s.best;
    int score = search_root_move(s, move, child_depth - move.reduction, s.alpha, s.alpha + 1, 1);
    if (score <= s.alpha || move.interrupted) return;
    run.easy_state = u8{0};
    int beta = s.alpha + 1;
    int step = 25;
    do {
        show_bound(s, move, FAIL_HIGH);
        beta += step;
        step *= 2;
        score = search_root_move(s, move, child_depth, s.alpha, beta, 0);
    } while (score >= beta && !move.interrupted);
}

// Whether the move, which beat alpha, becomes the best one; keeps the second-best score.
bool rank_root_score(const RootSearch& s, int score) {
    if (is_main(s.t) && score > run.second_score && s.best != NO_SCORE) {
        run.second_score = std::min(score, s.best);
    }
    return score > s.best;
}

void take_new_best(RootSearch& s, const RootMove& move) {
    ThreadData& t = s.t;
    s.best = move.score;
    t.root_score = i16(move.score);
    t.pv[1][1] = move.entry->move;
    extend_line(t, 1);
    for (int i = 1; i < MAX_PLY; ++i) {
        t.root_line[i] = t.pv[1][i];
        if (t.pv[1][i] == NO_MOVE) break;
    }
    t.best_depth = s.depth;
    if (is_main(t)) publish_result(t);
    MoveEntry* front = t.plies[1].list_start + s.pv_index;
    std::rotate(front, move.entry, move.entry + 1);
}

void search_one_root_move(RootSearch& s, RootMove& move) {
    ThreadData& t = s.t;
    const Line line = t.root_line;
    const i16 score = t.root_score;
    t.root_state = u8{ROOT_NORMAL};
    move.flags = s.checked ? 0 : move_flags(t.position, *move.entry);
    move.entry->order = i16(-9000 - t.plies[1].move_count);
    move.extended = root_extension(t, *move.entry, move.flags);
    move.reduction = root_reduction(s, move);
    t.plies[1].next_pick = move.entry;

    trace_before_make(t, move.entry->move);
    make_move(t.position, move.entry->move);
    if (s.best == NO_SCORE || (s.depth == 1 && options.target_nps > SLOW_NPS)) {
        search_open(s, move);
    } else {
        search_later(s, move);
    }
    unmake_move(t.position);
    t.root_state = u8{ROOT_NORMAL};
    t.root_line = line;
    t.root_score = score;
}

// How sure the best move is, for the time check.
void judge_easy_move(const RootSearch& s) {
    if (!is_main(s.t) || run.multipv != 1 || s.depth < 7) return;
    const bool clear = s.depth >= 12 && s.depth - 5 > run.change_depth &&
                       s.best > run.second_score + 200 && s.best > s.t.root_eval + 200;
    run.easy_state = u8(s.t.plies[1].move_count == 1 ? 1 : clear ? 2 : 0);
}

void report_currmove(const RootSearch& s, Move move) {
    if (is_main(s.t) && s.pv_index == 0 && options.uci_mode && run.elapsed > CURRMOVE_AFTER &&
        output_due()) {
        print_currmove(s.depth, move, s.t.plies[1].move_count + 1);
    }
}

}  // namespace

void root_search(ThreadData& t, int depth, int pv_index) {
    RootSearch s = start_root_search(t, depth, pv_index);
    int& move_count = t.plies[1].move_count;
    move_count = 0;
    t.plies[1].depth = depth;
    for (MoveEntry* entry = t.plies[1].list_start + pv_index; select_best(entry); ++entry) {
        if (!is_main(t) && depth < run.main_done_depth && run.elapsed > ABANDON_AFTER) {
            t.root_state = u8{ABANDONED};
            return;
        }
        report_currmove(s, entry->move);
        RootMove move{.entry = entry, .flags = 0, .extended = 0, .reduction = 0};
        search_one_root_move(s, move);
        ++move_count;
        if (stopped()) {
            const bool better =
                is_main(t) && move_count > 1 && move.score > run.shared_score + INTERRUPTED_MARGIN;
            if (better) take_new_best(s, move);
            return;
        }
        if (move.score > s.alpha) {
            entry->order = i16(move.score);
            if (rank_root_score(s, move.score)) take_new_best(s, move);
        }
    }
    judge_easy_move(s);
}

}  // namespace quon
