// Strength limiting and the start-up calibration.

#include "search/strength.h"

#include <algorithm>
#include <cmath>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "platform/clock.h"
#include "search/history.h"
#include "search/picker.h"
#include "search/search.h"
#include "search/searcher.h"
#include "search/threads.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr int WALK_DEPTH = 8;
constexpr int WALK_MOVES = 6;
constexpr double WALK_SECONDS = 0.4;

// Evaluates the first moves of every node to the given depth; false once time is up.
bool walk(ThreadData& t, int ply, int depth, u64& nodes) {
    ++nodes;
    PlyRecord& record = t.plies[ply];
    const bool checked = in_check(t.position);
    evaluate_node(t, ply, checked);
    if (depth == 0) return true;

    record.stage = PickStage::START;
    record.move_count = 0;
    record.hash_move = NO_MOVE;
    const KingGuard guard = king_guard(t.position, checked);
    int searched = 0;
    while (const MoveEntry* entry = next_move(t, ply, checked)) {
        if (!is_legal(t.position, entry->move, guard)) continue;
        make_move(t.position, entry->move);
        const bool go_on = walk(t, ply + 1, depth - 1, nodes);
        unmake_move(t.position);
        if (!go_on) return false;
        if (depth >= 4) {
            update_elapsed(t.shared->run);
            if (t.shared->run.elapsed > WALK_SECONDS) return false;
        }
        if (++searched == WALK_MOVES) break;
    }
    return true;
}

}  // namespace

double elo_to_nps(double elo) { return std::exp((elo - 1337) / 111) + 20; }

double nps_to_elo(double nps) { return std::log(nps - 20) * 111 + 1337; }

Calibration calibrate(Searcher& s) {
    set_start_position(s.game.position);
    SearchRun& run = s.run;
    run.start_time = monotonic_seconds();
    run.elapsed = 0.0;
    ThreadData& t = thread_data(s, 0);
    thread_prepare(t);
    reset_ordering(t);
    u64 nodes = 0;
    walk(t, 1, WALK_DEPTH, nodes);
    update_elapsed(run);
    return {.seconds = run.elapsed,
            .nodes = nodes,
            .nps = double(nodes) * 0.51 / (run.elapsed + 0.001)};
}

void throttle(const ThreadData& t) {
    SearchRun& run = t.shared->run;
    const Relaxed<double>& target_nps = t.shared->settings.target_nps;
    const auto lets_go = [&] {
        return !run.limited || (run.overdue && run.shared_depth < FIRST_RESULT_DEPTH);
    };
    while (!stopped(t) && target_nps < NO_NPS_LIMIT && run.current_depth > 1 && !lets_go()) {
        if (target_nps >= double(t.nodes) / run.elapsed) return;
        sleep_ms(1);
        update_elapsed(run);
    }
}

}  // namespace quon
