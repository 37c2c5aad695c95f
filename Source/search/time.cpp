// Time management.

#include "search/time.h"

#include <algorithm>
#include <cstdlib>

#include "board/keys.h"
#include "platform/clock.h"
#include "search/score.h"
#include "search/searcher.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr double LEAST_TARGET = 0.002;  // seconds
constexpr double CHECK_AFTER = 0.02;    // seconds
constexpr double LEAST_GRACE = 0.05;    // seconds past the time, for a search without a result

void reset_run(Searcher& s) {
    SearchRun& run = s.run;
    if (!s.params.limit_strength) s.settings.target_nps = NO_NPS_LIMIT;
    run.root_side = s.game.position.side;
    run.root_key = full_key(s.game.position);
    run.multipv = s.settings.multipv;
    run.depth_limit = s.limits.depth_limit;
    run.finished = false;
    run.shared_score = i16(NO_SCORE);
    run.shared_depth = i8{0};
    run.shared_line = {};
    for (auto& score : run.score_by_depth) score = i16(NO_SCORE);
    for (auto& move : run.move_by_depth) move = NO_MOVE;
    for (auto& nodes : run.nodes_by_depth) nodes = 0;
    run.change_depth = i8{0};
    run.easy_state = u8{0};
    run.current_depth = i8{0};
    run.main_done_depth = i8{0};
    run.root_tb_result = NO_TB_RESULT;
    run.root_decided = false;
    hash_start_search(s.hash, s.game.game_ply + 1, s.settings.hash_mode != 0);
    s.control.stop_flag = RUN;
    s.control.search_mode = s.control.go_request;
}

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

double target_from_clock(const Searcher& s) {
    const SearchLimits& limits = s.limits;
    const Share share = clock_share(limits, s.game.game_ply);
    const double clock = limits.clock[s.run.root_side];
    const double overhead = limits.move_overhead;
    double target = clock / share.divisor;
    if (s.settings.ponder_option && share.stretch) target *= 1.3;
    if (limits.increment > 0 && clock > 4 * overhead) {
        target += limits.increment * clock / (2 * limits.increment + clock);
    }
    // Whatever the share, a third of the clock and four delays stay.
    target = std::min(clock * 0.65 - 4 * overhead, target);
    return std::max(LEAST_TARGET, target);
}

}  // namespace

void time_setup(Searcher& s) {
    SearchRun& run = s.run;
    run.start_time = monotonic_seconds();
    run.elapsed = 0.0;
    if (s.limits.depth_limit > 2) {
        init_eval_tables(s.eval_tables, s.params);
        apply_search_params(s.search_params, s.params);
    }
    reset_run(s);
    if (s.limits.time_mode == FIXED_TIME) {
        run.target_time = s.limits.fixed_time;
        s.limits.clock[run.root_side] = s.limits.fixed_time;
    } else {
        run.target_time = target_from_clock(s);
    }
    if (s.listener) s.listener->on_start(s);
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

int instability(const Searcher& s, int depth) {
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

// Before a result of depth 2 a search goes past its time, but not far: where captures explode, the
// first iteration could take hours.
bool far_past_time(const Searcher& s) {
    const SearchLimits& limits = s.limits;
    const double grace = std::max(limits.move_overhead, LEAST_GRACE);
    double limit = 2 * s.run.target_time;
    if (limits.time_mode != FIXED_TIME) {
        limit = std::clamp(limits.clock[s.run.root_side] - 2 * grace, 0.0, limit);
    }
    return s.run.elapsed >= limit + grace;
}

void time_is_up(SearchControl& control) {
    control.stop_flag = control.search_mode == GO_PLAY ? STOP : ABORT;
}

bool move_is_easy(const SearchRun& run) {
    return run.easy_state == 1 || (run.easy_state == 2 && run.elapsed >= run.target_time * 0.5);
}

}  // namespace

void update_elapsed(SearchRun& run) { run.elapsed = monotonic_seconds() - run.start_time; }

void time_check(Searcher& s) {
    SearchRun& run = s.run;
    const SearchLimits& limits = s.limits;
    update_elapsed(run);
    const int depth = run.current_depth;
    if (stopped(s) || s.control.search_mode == GO_PONDER) return;
    if (run.shared_depth < 2 || depth < 2) {
        if (far_past_time(s)) time_is_up(s.control);
        return;
    }
    const double remaining = std::max(limits.clock[run.root_side] - run.elapsed, 0.0);
    // Then every millisecond counts: with short increments even CHECK_AFTER a move would be too
    // much.
    const bool clock_nearly_gone =
        limits.time_mode != FIXED_TIME && remaining < 5 * limits.move_overhead;
    if (run.elapsed < CHECK_AFTER && !clock_nearly_gone) return;

    const int doubt = instability(s, depth);
    double limit = run.target_time + doubt * 0.01 * remaining;
    if (limits.time_mode != FIXED_TIME) {
        if (doubt == 0 && depth > 7 && depth - 3 > run.change_depth) limit *= 0.85;
        limit -= limits.move_overhead;
    }
    if (run.elapsed >= limit || move_is_easy(run) || clock_nearly_gone) time_is_up(s.control);
}

}  // namespace quon
