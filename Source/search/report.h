#pragma once
// What the search tells: info lines, the closing report, console statistics.

#include "search/run.h"

namespace quon {

// Sums over all threads, as of the last collect_stats.
struct SearchTotals {
    u64 nodes, tb_hits, hash_probes, hash_hits, eval_probes, eval_hits, pawn_probes, pawn_hits;
};
extern SearchTotals totals;
void collect_stats();

// One line of progress. pv_index is -1 for the result board and for bounds that are being resolved.
void print_info(int thread_index, int pv_index, int depth, int score, const Line& line);

// The announcement of a root move: the status line before the first of an iteration, then the move.
void print_currmove(int depth, Move move, int number);

// The last info line of a search.
void final_report(int score);

// Growth of the node count per iteration over the last four; 2 for a search of fewer than six.
double effective_branching();

// The closing lines of console mode.
void print_console_statistics();

// True once progress lines may appear.
bool output_due();

}  // namespace quon
