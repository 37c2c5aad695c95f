// Publishing results.

#include "search/result.h"

#include "search/score.h"
#include "search/searcher.h"

namespace quon {

void tell_line(const ThreadData& t, const SearchLine& line) {
    Searcher& s = *t.shared;
    if (s.listener) s.listener->on_line(s, line);
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
