// The start of a search, and its result board.

#include "search/run.h"

#include <algorithm>
#include <utility>

#include "board/keys.h"
#include "platform/clock.h"
#include "search/score.h"
#include "search/searcher.h"
#include "search/time.h"

namespace quon {

namespace {

void reset_run(Searcher& s) {
    SearchRun& run = s.run;
    if (!s.params.limit_strength) s.settings.target_nps = NO_NPS_LIMIT;
    run.root_side = s.game.position.side;
    run.root_key = full_key(s.game.position);
    run.multipv = s.settings.multipv;
    run.root_moves = std::exchange(s.limits.search_moves, {});
    run.mate_moves = std::exchange(s.limits.mate_moves, 0);
    run.easy_moves = run.root_moves.empty() && run.mate_moves == 0;
    run.depth_limit = s.limits.depth_limit;
    if (run.mate_moves > 0) run.depth_limit = std::min(run.depth_limit, 2 * run.mate_moves + 1);
    run.limited = s.params.limit_strength != 0;
    run.overdue = false;
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

}  // namespace

void start_run(Searcher& s) {
    SearchRun& run = s.run;
    run.start_time = monotonic_seconds();
    run.elapsed = 0.0;
    if (s.limits.depth_limit > 2) {
        derive_tables(s);
    }
    reset_run(s);
    run.target_time = target_time(s.limits, s.limits.clock[run.root_side], s.game.game_ply,
                                  s.settings.ponder_option != 0);
    if (s.listener) s.listener->on_start(s);
}

void update_elapsed(SearchRun& run) { run.elapsed = monotonic_seconds() - run.start_time; }

void tell_line(const ThreadData& t, const SearchLine& line) {
    Searcher& s = *t.shared;
    if (!s.listener) return;
    update_elapsed(s.run);
    s.listener->on_line(s, line);
}

void publish_result(ThreadData& t) {
    auto& run = t.shared->run;
    const int score = t.root_score;
    const int depth = t.best_depth;
    {
        const std::lock_guard lock(run.result_mutex);
        const int shown = run.shared_score;
        const bool better = (score >= CERTAIN_MATE && score >= shown) ||
                            (depth > run.shared_depth && shown <= LAST_OPEN_SCORE) ||
                            (depth == run.shared_depth && score > shown);
        if (better) {
            const bool first = run.shared_depth == 0;
            if (first || t.root_line[1] != run.shared_line[1]) run.change_depth = i8(depth);
            run.shared_score = i16(score);
            run.shared_depth = i8(depth);
            run.shared_line = t.root_line;
            run.score_by_depth[depth] = i16(score);
            run.move_by_depth[depth] = t.root_line[1].get();
        }
    }
    if (depth > 1 && run.multipv == 1 && run.shared_line[1] != NO_MOVE) {
        tell_line(t, {LineKind::RESULT, t.index, -1, run.shared_depth, run.shared_score,
                      run.shared_line});
    }
}

}  // namespace quon
