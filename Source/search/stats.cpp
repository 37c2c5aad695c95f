// Sums over the search threads.

#include "search/stats.h"

#include <cmath>

#include "search/searcher.h"

namespace quon {

void collect_stats(Searcher& s) {
    SearchTotals& totals = s.totals;
    totals = {};
    for (int i = 0; i < thread_total(s); ++i) {
        const ThreadData& t = thread_data(s, i);
        totals.nodes += t.nodes;
        totals.tb_hits += t.tb_hits;
        totals.hash_probes += t.hash_probes;
        totals.hash_hits += t.hash_hits;
        totals.eval_probes += t.eval.evaluations;
        totals.eval_hits += t.eval.eval_hits;
        totals.pawn_probes += t.eval.pawn_probes;
        totals.pawn_hits += t.eval.pawn_hits;
    }
}

double effective_branching(const SearchRun& run) {
    const int depth = run.main_done_depth;
    if (depth < 6) return 2.0;
    const double last = double(run.nodes_by_depth[depth].load());
    const double earlier = double(run.nodes_by_depth[depth - 4].load());
    if (last == 0 || earlier == 0) return 2.0;
    return std::pow(last / earlier, 0.25);
}

}  // namespace quon
