// Publishing results.

#include "search/result.h"

#include "frontend/engine_options.h"
#include "search/control.h"
#include "search/report.h"
#include "search/score.h"

namespace quon {

namespace {

constexpr int OPEN_SCORE = 9898;  // up to here a deeper result replaces any score

}  // namespace

void publish_result(ThreadData& t) {
    const int score = t.root_score;
    const int depth = t.best_depth;
    {
        const std::lock_guard lock(run.result_mutex);
        const int shown = run.shared_score;
        const bool better = (score >= CERTAIN_MATE && score >= shown) ||
                            (depth > run.shared_depth && shown <= OPEN_SCORE) ||
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
    const bool due = stopped() ? options.output_delay != NEVER : output_due();
    if (depth > 1 && run.multipv == 1 && due && run.shared_line[1] != NO_MOVE) {
        print_info(t.index, -1, run.shared_depth, run.shared_score, run.shared_line);
    }
}

}  // namespace quon
