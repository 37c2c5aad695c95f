#pragma once
// What all threads share about the running search: its limits, its clock and its published result.

#include <atomic>
#include <mutex>

#include "board/position.h"
#include "search/depths.h"
#include "search/settings.h"
#include "support/relaxed.h"

namespace quon {

// A principal variation: entry 1 is the best move, entry 2 the expected reply, 0 ends it.
using Line = Table<Relaxed<Move>, MAX_PLY>;

// Tablebase results for the side to move; the ones between are drawn under the fifty-move rule.
constexpr int NO_TB_RESULT = -1;
constexpr int TB_LOSS = 0;
constexpr int TB_WIN = 4;

struct SearchRun {
    // Set by start_run before the threads start, constant during a search.
    double start_time = 0;                 // seconds on the monotonic clock
    double target_time = ENDLESS_SECONDS;  // seconds allotted to this move
    int root_side = WHITE;
    u64 root_key = 0;  // full key of the position searched
    int multipv = 1;
    int depth_limit = NO_DEPTH_LIMIT;
    std::vector<Move> root_moves;    // empty: all
    int mate_moves = 0;              // as in SearchLimits
    bool easy_moves = true;          // an easy choice may end the search early
    bool limited = false;            // the strength was limited when the search began
    Relaxed<bool> overdue = false;   // time is up, and a result of depth 2 is still missing
    Relaxed<bool> finished = false;  // the search ended by itself: depth limit, mate or table move

    Relaxed<double> elapsed = 0.0;  // seconds since start_time, as of the last update_elapsed

    // The result board: the main search thread writes it, and holds result_mutex while its fields
    // do not yet fit together.
    std::mutex result_mutex;
    Relaxed<i16> shared_score = i16{0};
    Relaxed<i8> shared_depth = i8{0};
    Line shared_line{};
    Table<Relaxed<i16>, MAX_PLY> score_by_depth{};
    Table<Relaxed<Move>, MAX_PLY> move_by_depth{};
    Relaxed<i8> change_depth = i8{0};  // iteration at which the best move last changed

    Table<std::atomic<u64>, MAX_PLY> nodes_by_depth{};
    Relaxed<u8> easy_state = u8{0};  // 1 single root move, 2 clearly best move; set by
    // the main search thread, cleared by any thread that finds a better move
    Relaxed<i8> current_depth = i8{0};    // the main search thread's iteration
    Relaxed<i8> main_done_depth = i8{0};  // last iteration that it completed
    int second_score = 0;  // second-best root score of the iteration; the main search thread's own
    Relaxed<int> root_tb_result = NO_TB_RESULT;  // of the tablebases, for the side to move
    std::atomic<bool> root_decided = false;      // set behind root_tb_result: workers may read it
};

struct Searcher;
struct SearchLine;
struct ThreadData;

// At every search start: the clock, what derives from the parameters, a fresh run, its target from
// `limits`. The listener hears of it.
void start_run(Searcher& s);

// Reads the clock into run.elapsed; any thread.
void update_elapsed(SearchRun& run);

// Tells whoever listens, with the clock read anew.
void tell_line(const ThreadData& t, const SearchLine& line);

// Puts the thread's best line on the result board if it is better than what stands there, and tells
// it.
void publish_result(ThreadData& t);

}  // namespace quon
