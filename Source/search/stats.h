#pragma once
// Figures of a search, summed over its threads.

#include "support/integers.h"

namespace quon {

struct Searcher;
struct SearchRun;

// As of the last collect_stats.
struct SearchTotals {
    u64 nodes, tb_hits, hash_probes, hash_hits, eval_probes, eval_hits, pawn_probes, pawn_hits;
};

void collect_stats(Searcher& s);

// Growth of the node count per iteration over the last four; 2 for a search of fewer than six.
double effective_branching(const SearchRun& run);

}  // namespace quon
