#pragma once
// Time management. The main thread calls, where nothing else is said.

namespace quon {

struct Searcher;
struct SearchRun;

// At every search start: clock, generation, shared run state, and this move's target time from
// `limits`.
void time_setup(Searcher& s);

// Reads the clock into run.elapsed; any thread.
void update_elapsed(SearchRun& run);

// Every few milliseconds during a search: updates the elapsed time and sets the stop flag when the
// time allotted is spent, stretched while the best move is in doubt.
void time_check(Searcher& s);

}  // namespace quon
