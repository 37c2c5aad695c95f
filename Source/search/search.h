#pragma once
// The search's functions, from the root down. Scores are centipawns for the side to move.

#include "search/thread_data.h"

namespace quon {

// Copies the game into the thread's record and resets what a search starts from. Called by the main
// thread while the search thread is idle.
void thread_prepare(ThreadData& t);

// The main search thread's whole search: iterative deepening until the limit, a mate, or the stop
// flag.
void iterate(ThreadData& t);
// A worker's search: the same iterations without publishing.
void iterate_worker(ThreadData& t);

// One iteration over the root moves from list position pv_index on.
void root_search(ThreadData& t, int depth, int pv_index);

// A node below the root. `ply` counts from 1 at the root, `depth` in plies. A node with a zero
// window only has to tell whether it beats alpha; one with an open window is on the way to the
// principal variation. Returns 0 at once when the stop flag is set.
int search_node(ThreadData& t, int ply, int depth, int alpha, int beta, bool zero_window);
// Captures and queen promotions; from depth 0 on also quiet checks and pawns to the seventh rank.
// The node has stored its evaluation in the record and is not in check.
int qsearch(ThreadData& t, int ply, int depth, int alpha, int beta, bool zero_window);

// Sets the node count at which the thread looks around next: at its node limit, or for keep_on.
void schedule_look(ThreadData& t);
// The node's line is the move alone, or empty with NO_MOVE.
void end_line(ThreadData& t, int ply, Move move);
// Copies the child's line behind the move at pv[ply][ply].
void extend_line(ThreadData& t, int ply);

}  // namespace quon
