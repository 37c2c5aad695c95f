#pragma once
// What a search is told from outside: settings that stay from search to search, and the limits of
// the next one. The main thread writes them; the Relaxed fields are also read by searching threads.

#include <vector>

#include "search/depths.h"
#include "support/integers.h"
#include "support/relaxed.h"
#include "support/table.h"

namespace quon {

constexpr int MAX_HASH_MB = 8192;
constexpr int MAX_THREADS = 80;
constexpr int MAX_MULTIPV = 255;
constexpr double NO_NPS_LIMIT = 1000000000.0;

struct SearchSettings {
    i16 hash_mb = 64;   // 0..MAX_HASH_MB
    u8 hash_mode = 1;   // 0 not used, 1 used, 2 used and kept by console commands
    u8 threads = 1;     // 1..MAX_THREADS
    bool numa = false;  // place search threads on NUMA nodes
    i16 ponder_option = 1;
    i16 multipv = 1;  // 1..MAX_MULTIPV
    // Plies; the option allows 1..100, the parameter file any value.
    Relaxed<i16> syzygy_probe_depth5 = i16{1};
    Relaxed<i16> syzygy_probe_depth6 = i16{2};
    Relaxed<double> target_nps = NO_NPS_LIMIT;  // node-rate cap per search thread
    Relaxed<i16> trace = i16{0};                // plies of the search tree that go to trace.txt
};

// Values of time_mode; N >= 2 means N moves per period.
constexpr u8 CLOCK_TIME = 0;
constexpr u8 FIXED_TIME = 1;
constexpr double ENDLESS_SECONDS = 10000000;  // a fixed time that no search reaches

struct SearchLimits {
    u8 time_mode = FIXED_TIME;
    double fixed_time = 5.0;                // seconds per move under FIXED_TIME
    Table<double, 2> clock = {{5.0, 5.0}};  // seconds left for White, Black
    double increment = 0.0;                 // seconds, of the side to move
    i16 moves_to_go = 0;                    // to the end of the period, where that is counted
    u8 depth_limit = NO_DEPTH_LIMIT;
    i64 max_nodes = 0;            // 0: none
    double move_overhead = 0.05;  // seconds
    // Of the next search alone:
    std::vector<Move> search_moves;  // its root moves; empty: all
    int mate_moves = 0;  // it ends with a mate in so many moves, for either side; 0: any
};

// A depth argument as a depth limit: 67 and more mean none (66), negative ones 0.
constexpr u8 to_depth_limit(i64 depth) {
    if (depth < 0) return 0;
    return u8(depth > NO_DEPTH_LIMIT ? NO_DEPTH_LIMIT : depth);
}

}  // namespace quon
