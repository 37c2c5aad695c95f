#pragma once
// Time management. Pure functions of what they are told, in seconds, and the check that asks them.

#include "search/settings.h"

namespace quon {

struct Searcher;

// What the next move may take. clock: left for the side to move, of no account under a fixed time.
// game_ply: plies played. At least 0.002 on a clock.
double target_time(const SearchLimits& limits, double clock, int game_ply, bool ponder);

// How far a search has come.
struct SearchProgress {
    double elapsed;
    double target;     // target_time
    double clock;      // as at the start; under a fixed time that time
    int depth;         // the iteration under way
    int result_depth;  // of the published result
    int change_depth;  // iteration at which the best move last changed
    int easy_state;    // 1 only one move, 2 one is clearly best
    int doubt;         // 0 to 20: percent of the rest of the clock that the best move deserves
};
// The verdict on it.
bool time_is_up(const SearchLimits& limits, const SearchProgress& search);

// Every few milliseconds during a search, on the main thread: updates the elapsed time and sets the
// stop flag when time is up, in all but pondering.
void time_check(Searcher& s);

}  // namespace quon
