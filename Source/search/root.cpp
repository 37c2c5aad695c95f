// One iteration over the root moves.
//
//   1  aspiration window: the score of the last iteration, give or take a little; a narrow window
//      makes more cut-offs, and when it was too narrow the search says on which side
//   2  the first move, in that window, which opens until the score lies inside
//   3  every later move, in a zero window above the best score; when it beats that, the window is
//      opened upwards step by step, so that the time check and the reader learn early that the best
//      move may change
//   4  a new best move is published at once and moves to the front of the list: the next iteration
//      tries it first
//   5  how easy the choice is, for the time check
//
// The root has its own, milder rules of extension and reduction: each root move is worth knowing,
// and an extension here lasts for the whole tree below. What the stop interrupts is thrown away,
// unless a later move has already shown itself clearly better than the published one.

#include <algorithm>
#include <cstdlib>

#include "board/make.h"
#include "search/descend.h"
#include "search/move_flags.h"
#include "search/picker.h"
#include "search/run.h"
#include "search/score.h"
#include "search/search.h"
#include "search/searcher.h"

namespace quon {

namespace {

constexpr double ABANDON_AFTER = 0.025;  // seconds, for a worker behind the main thread
constexpr int SLOW_NPS = 15000;          // at or below: no full windows for later moves at depth 1
constexpr int INTERRUPTED_MARGIN = 25;   // centipawns above the published score

// Aspiration window, centipawns to either side. Depth 1 has none.
constexpr int DEPTH_2_WIDTH = 100;
constexpr int LEAST_WIDTH = 15;     // narrower from depth to depth, wider for large scores
constexpr int WIDTH_PER_DEPTH = 4;  // for each ply below WIDTH_DEPTH
constexpr int WIDTH_DEPTH = 15;
constexpr int WIDTH_SCORE_DIVISOR = 16;
constexpr int LEAST_STEP = 25;  // by which a window opens; it doubles each time

// Sixteenths of a ply.
constexpr int PLY = 16;
constexpr int CAPTURE_EXTENSION = 8;

// Late-move reduction of a quiet root move, by one ply.
constexpr int REDUCED_DEPTH = 7;  // above
constexpr int FULL_MOVES = 5;     // moves that are never reduced
constexpr int SCORE_HELD = 34;    // the best score may have fallen by this much

constexpr int SEARCHED_ORDER = -9000;  // of a move that was not the best, less its number

// The move is clearly best when it has been so for long and nothing comes near.
constexpr int EASY_DEPTH = 7;
constexpr int CLEAR_DEPTH = 12;
constexpr int CLEAR_FOR = 5;       // iterations
constexpr int CLEAR_MARGIN = 200;  // centipawns above the second move and the evaluation

constexpr int VERBOSE_DEPTH = 3;  // above: bounds are told

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
    const int usual = std::max(WIDTH_PER_DEPTH * (WIDTH_DEPTH - depth), LEAST_WIDTH) +
                      std::abs(previous) / WIDTH_SCORE_DIVISOR;
    const int width = depth == 1 ? MATE : depth == 2 ? DEPTH_2_WIDTH : usual;
    const int low = previous - width;
    const int high = previous + width;
    return {.t = t,
            .depth = depth,
            .pv_index = pv_index,
            .checked = in_check(t.position),
            .verbose =
                is_main(t) && t.shared->run.multipv == 1 && pv_index == 0 && depth > VERBOSE_DEPTH,
            .previous = previous,
            .width = width,
            .alpha0 = is_loss(low) ? -MATE : low,
            .beta0 = is_win(high) ? MATE : high};
}

// Sixteenths of a ply; captures count for more than deeper in the tree.
int root_extension_share(const Position& p, const MoveEntry& entry, int flags) {
    if (flags & DISCOVERED_CHECK) return PLY;
    if ((flags & (CHECK | PAWN_TO_SEVENTH)) && !loses_material(p, entry)) return PLY;
    return flags & CAPTURE ? CAPTURE_EXTENSION : 0;
}

// The accumulator starts from 0 for every root move.
int root_extension(ThreadData& t, const MoveEntry& entry, int flags) {
    const int gathered = root_extension_share(t.position, entry, flags);
    t.ext_acc = gathered % PLY;
    return gathered / PLY;
}

int root_reduction(const RootSearch& s, const RootMove& move) {
    const Position& p = s.t.position;
    const bool reducible = !move.extended && s.t.shared->run.multipv == 1 &&
                           s.depth > REDUCED_DEPTH && s.t.plies[1].move_count > FULL_MOVES &&
                           s.best >= s.previous - SCORE_HELD && !is_loss(s.best) && !s.checked &&
                           move.flags == 0 && p.npm[p.side] > 0 && pawn_count(p, p.side) > 0;
    return reducible ? 1 : 0;
}

// A score from below the root; a search cut short by the stop leaves the last one standing.
int search_root_move(RootSearch& s, RootMove& move, int child_depth, int alpha, int beta,
                     bool zero_window) {
    const int score = -search_node(s.t, 2, child_depth, -beta, -alpha, zero_window);
    move.interrupted = stopped(s.t);
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
    if (s.verbose) tell_line(t, {LineKind::BOUND, t.index, -1, s.depth, t.root_score, t.root_line});
}

// First move: the aspiration window opens until the score lies inside.
void search_open(RootSearch& s, RootMove& move) {
    const int child_depth = s.depth + move.extended - 1;
    int score = search_root_move(s, move, child_depth, s.alpha0, s.beta0, false);
    while ((score <= s.alpha0 || score >= s.beta0) && !move.interrupted) {
        const bool high = score >= s.beta0;
        show_bound(s, move, high ? FAIL_HIGH : FAIL_LOW);
        s.width = std::max(2 * s.width, LEAST_STEP);
        if (high) {
            s.beta0 += s.width;
        } else {
            s.alpha0 -= s.width;
        }
        if (is_loss(s.alpha0)) s.alpha0 = -MATE;
        if (is_win(s.beta0)) s.beta0 = MATE;
        score = search_root_move(s, move, child_depth, s.alpha0, s.beta0, false);
    }
    s.alpha = s.alpha0;
}

// Later moves: a zero window above the best score, opened step by step when the move beats it.
void search_later(RootSearch& s, RootMove& move) {
    const int child_depth = s.depth + move.extended - 1;
    s.alpha = is_loss(s.best) ? -MATE : s.best;
    int score = search_root_move(s, move, child_depth - move.reduction, s.alpha, s.alpha + 1, true);
    if (score <= s.alpha || move.interrupted) return;
    s.t.shared->run.easy_state = u8{0};
    int beta = s.alpha + 1;
    int step = LEAST_STEP;
    do {
        show_bound(s, move, FAIL_HIGH);
        beta += step;
        step *= 2;
        score = search_root_move(s, move, child_depth, s.alpha, beta, false);
    } while (score >= beta && !move.interrupted);
}

// Whether the move, which beat alpha, becomes the best one; keeps the second-best score.
bool rank_root_score(const RootSearch& s, int score) {
    auto& run = s.t.shared->run;
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
    move.entry->order = i16(SEARCHED_ORDER - t.plies[1].move_count);
    move.extended = root_extension(t, *move.entry, move.flags);
    move.reduction = root_reduction(s, move);
    t.plies[1].next_pick = move.entry;

    descend(t, move.entry->move, true);
    const Searcher& searcher = *t.shared;
    const bool slow = searcher.run.limited && searcher.settings.target_nps <= SLOW_NPS;
    if (s.best == NO_SCORE || (s.depth == 1 && !slow)) {
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
    auto& run = s.t.shared->run;
    if (!is_main(s.t) || !run.easy_moves || run.multipv != 1 || s.depth < EASY_DEPTH) return;
    const bool clear = s.depth >= CLEAR_DEPTH && s.depth - CLEAR_FOR > run.change_depth &&
                       s.best > run.second_score + CLEAR_MARGIN &&
                       s.best > s.t.root_eval + CLEAR_MARGIN;
    run.easy_state = u8(s.t.plies[1].move_count == 1 ? 1 : clear ? 2 : 0);
}

void tell_root_move(const RootSearch& s, Move move) {
    if (!is_main(s.t) || s.pv_index != 0) return;
    Searcher& searcher = *s.t.shared;
    if (!searcher.listener) return;
    if (s.t.plies[1].move_count == 0) update_elapsed(searcher.run);
    searcher.listener->on_root_move(searcher, s.depth, move, s.t.plies[1].move_count + 1);
}

}  // namespace

void root_search(ThreadData& t, int depth, int pv_index) {
    auto& run = t.shared->run;
    RootSearch s = start_root_search(t, depth, pv_index);
    int& move_count = t.plies[1].move_count;
    move_count = 0;
    t.plies[1].depth = depth;
    for (MoveEntry* entry = t.plies[1].list_start + pv_index; select_best(entry); ++entry) {
        if (!is_main(t) && depth < run.main_done_depth && run.elapsed > ABANDON_AFTER) {
            t.root_state = u8{ABANDONED};
            return;
        }
        tell_root_move(s, entry->move);
        RootMove move{.entry = entry, .flags = 0, .extended = 0, .reduction = 0};
        search_one_root_move(s, move);
        ++move_count;
        if (stopped(t)) {
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
