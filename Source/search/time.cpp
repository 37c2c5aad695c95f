// Time management: how long a move may take, and when a search is stopped. Seconds throughout.
//
// 1. The target is planned once, when the search starts. Under a fixed time it is that time. Else a
//    share of the clock: a game without periods is taken to last some 24 to 38 more moves, a period
//    its moves and one more. If the engine ponders a third more is spent, as half of the replies
//    come for free; not so right before a period ends. The increment adds up to half of itself,
//    little while the clock is short. Whatever the share, a third of the clock and four delays of
//    transmission stay.
// 2. Every few milliseconds the search is compared with its plan. It is stopped when the elapsed
//    time reaches target + doubt * (rest of the clock), less one delay; earlier, at 85 %, if
//    nothing speaks against a move that has been best for long. Doubt is a percentage: the score
//    falls against the last iteration (4, 8, 20), a thread sees the best move fail low (20) or
//    another one above it (2, 12), the best move has just changed (1). The greatest counts.
// 3. A move that is the only one is made at once, one that is clearly best after half the target;
//    and with less than five delays left on the clock (a delay being 10 ms at least, whatever the
//    front end says) any move is made as soon as there is one.
// 4. Not before a result of depth 2, and hardly before 20 ms or, if that is less, a twentieth of
//    the clock: what comes earlier is no search. A search that is held to a node rate goes on
//    without that from the moment its time is up until it has such a result. But where captures
//    explode the first iteration could take hours; it ends at twice the target, or two delays
//    before the clock does.

#include "search/time.h"

#include <algorithm>
#include <cstdlib>

#include "search/searcher.h"

namespace quon {

namespace {

constexpr double LEAST_TARGET = 0.002;
constexpr double CHECK_AFTER = 0.02;
constexpr double CHECK_SHARE = 0.05;     // of the rest of the clock
constexpr double RESERVE_DELAYS = 5;     // with less on the clock than so many overheads ...
constexpr double LEAST_OVERHEAD = 0.01;  // ... of at least this length every millisecond counts
constexpr double LEAST_GRACE = 0.05;     // past the time, for a search without a result

// How the clock is shared out: the part of it for one move, and whether pondering may stretch that.
struct Share {
    int divisor;
    bool stretch;
};

Share clock_share(const SearchLimits& limits, int game_ply) {
    if (limits.time_mode == CLOCK_TIME) {
        const int moves_to_go = game_ply < 30 ? 38 - game_ply / 2 : 24;
        return {moves_to_go + 1, true};
    }
    return {limits.moves_to_go + 1, limits.moves_to_go > 2};
}

}  // namespace

double target_time(const SearchLimits& limits, double clock, int game_ply, bool ponder) {
    if (limits.time_mode == FIXED_TIME) return limits.fixed_time;
    const Share share = clock_share(limits, game_ply);
    double target = clock / share.divisor;
    if (ponder && share.stretch) target *= 1.3;
    if (limits.increment > 0 && clock > 4 * limits.move_overhead) {
        target += limits.increment * clock / (2 * limits.increment + clock);
    }
    target = std::min(clock * 0.65 - 4 * limits.move_overhead, target);
    return std::max(LEAST_TARGET, target);
}

namespace {

bool move_is_easy(const SearchProgress& search) {
    return search.easy_state == 1 ||
           (search.easy_state == 2 && search.elapsed >= search.target * 0.5);
}

bool far_past_time(const SearchLimits& limits, const SearchProgress& search) {
    const double grace = std::max(limits.move_overhead, LEAST_GRACE);
    double limit = 2 * search.target;
    if (limits.time_mode != FIXED_TIME) limit = std::clamp(search.clock - 2 * grace, 0.0, limit);
    return search.elapsed >= limit + grace;
}

bool has_result(const SearchProgress& search) {
    return search.result_depth >= FIRST_RESULT_DEPTH && search.depth >= FIRST_RESULT_DEPTH;
}

// Whatever the search has found.
bool time_is_spent(const SearchLimits& limits, const SearchProgress& search) {
    const bool on_clock = limits.time_mode != FIXED_TIME;
    const double remaining = std::max(search.clock - search.elapsed, 0.0);
    const double reserve = RESERVE_DELAYS * std::max(limits.move_overhead, LEAST_OVERHEAD);
    const bool clock_nearly_gone = on_clock && remaining < reserve;
    const double first_look =
        std::min(CHECK_AFTER, on_clock ? CHECK_SHARE * remaining : search.target);
    if (search.elapsed < first_look && !clock_nearly_gone) return false;

    double limit = search.target + search.doubt * 0.01 * remaining;
    if (on_clock) {
        const bool settled = search.depth > 7 && search.depth - 3 > search.change_depth;
        if (search.doubt == 0 && settled) limit *= 0.85;
        limit -= limits.move_overhead;
    }
    return search.elapsed >= limit || move_is_easy(search) || clock_nearly_gone;
}

}  // namespace

bool time_is_up(const SearchLimits& limits, const SearchProgress& search) {
    return has_result(search) ? time_is_spent(limits, search) : far_past_time(limits, search);
}

namespace {

// How far a score must fall against the last iteration to count.
struct DropThresholds {
    int small;
    int big;
};

DropThresholds drop_thresholds(int previous) {
    if (std::abs(previous) >= 800) return {65, 260};
    const int small = std::abs(previous) / 16 + 15;
    return {small, 4 * small};
}

// What the threads think of the best move, in percent of the remaining time.
int disagreement(const Searcher& s, int depth) {
    const SearchRun& run = s.run;
    int doubt = 0;
    const Move best = run.shared_line[1];
    const int shared = run.shared_score;
    for (int i = 0; i < thread_total(s); ++i) {
        const ThreadData& t = thread_data(s, i);
        if (t.iteration < depth) continue;
        if (t.root_line[1] == best) {
            if (t.root_score < shared && t.root_state == FAIL_LOW) doubt = 20;
        } else if (t.root_score > shared) {
            if (t.root_state == FAIL_HIGH) doubt = std::max(doubt, 2);
            if (t.root_score > shared + 20) doubt = std::max(doubt, 12);
        }
    }
    return doubt;
}

// 0, or how sure it is that more time will change the move.
int doubt_of(const Searcher& s, int depth) {
    const SearchRun& run = s.run;
    const int previous = run.score_by_depth[depth - 1];
    const int shared = run.shared_score;
    const DropThresholds drop = drop_thresholds(previous);
    int doubt = disagreement(s, depth);
    if (shared < previous - drop.big) {
        doubt = 20;
    } else if (shared < previous - 2 * drop.small) {
        doubt = std::max(doubt, 8);
    } else if (shared < previous - drop.small) {
        doubt = std::max(doubt, 4);
    }
    if (depth > 6 && run.change_depth >= depth - 1) doubt = std::max(doubt, 1);
    return doubt;
}

SearchProgress progress_of(const Searcher& s) {
    const SearchRun& run = s.run;
    const int depth = run.current_depth;
    return {.elapsed = run.elapsed,
            .target = run.target_time,
            .clock = s.limits.clock[run.root_side],
            .depth = depth,
            .result_depth = run.shared_depth,
            .change_depth = run.change_depth,
            .easy_state = run.easy_state,
            .doubt = depth < 2 ? 0 : doubt_of(s, depth)};
}

}  // namespace

void time_check(Searcher& s) {
    update_elapsed(s.run);
    SearchControl& control = s.control;
    if (stopped(s) || control.search_mode == GO_PONDER) return;
    const SearchProgress search = progress_of(s);
    s.run.overdue = !has_result(search) && time_is_spent(s.limits, search);
    if (time_is_up(s.limits, search))
        control.stop_flag = control.search_mode == GO_PLAY ? STOP : ABORT;
}

}  // namespace quon
