#pragma once
// The process-wide settings and the limits of the next search. The main thread writes them; the
// Relaxed fields are also read by searching threads.

#include <string>

#include "board/types.h"
#include "platform/relaxed.h"

namespace quon {

constexpr char ENGINE_NAME[] = "Quon 3.60";
constexpr char ENGINE_AUTHOR[] = "Marovel";

constexpr int MAX_HASH_MB = 8192;
constexpr int MAX_THREADS = 80;
constexpr int MAX_MULTIPV = 255;
constexpr int NO_DEPTH_LIMIT = 66;
constexpr double NEVER = 9999;  // output_delay that silences progress lines
constexpr double NO_NPS_LIMIT = 1000000000.0;
constexpr std::size_t MAX_FILE_NAME = 139;
constexpr std::size_t MAX_TOOL_FILE_NAME = 140;
constexpr std::size_t MAX_SYZYGY_PATH = 129;

struct EngineOptions {
    Relaxed<bool> uci_mode = true;  // false: console mode
    Relaxed<bool> log_enabled = true;
    i16 hash_mb = 64;                 // 0..MAX_HASH_MB
    u8 hash_mode = 1;                 // 0 not used, 1 used, 2 used and kept by console commands
    u8 threads = 1;                   // 1..MAX_THREADS
    bool numa = false;                // place search threads on NUMA nodes
    Relaxed<bool> uci_extra = false;  // thread tag in info lines
    i16 ponder_option = 1;
    i16 multipv = 1;  // 1..MAX_MULTIPV
    bool own_book = false;
    std::string book_file = "quon.opn";  // empty: no book
    u8 book_depth = 24;                  // plies
    i16 book_variety = 30;               // 1 or more
    std::string syzygy_path;             // at most MAX_SYZYGY_PATH characters
    // Plies; the option allows 1..100, the parameter file any value.
    Relaxed<i16> syzygy_probe_depth5 = i16{1};
    Relaxed<i16> syzygy_probe_depth6 = i16{2};
    Relaxed<double> output_delay = 0.0;         // seconds of search before progress lines
    Relaxed<double> target_nps = NO_NPS_LIMIT;  // node-rate cap per search thread
    double calibration_nps = 0.0;               // measured at start-up
    double elo_max = 0.0;          // Elo of the unthrottled engine, from the calibration
    Relaxed<i16> trace = i16{0};   // plies of the search tree that go to trace.txt
    i16 debug = 0;                 // not 0: the console shows evaluations in place of boards
    bool self_play = false;        // every move found is played, and the next search follows
    bool self_play_alone = false;  // its input was at the end when it began: nobody will end it
    std::string tune_file;         // positions of the tuners and of the test-suite runner
    std::string match_file;        // games of the self-play match
    u32 timer_resolution = 0;      // ms; 0 where the system has no such setting
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
    i16 moves_to_go = 0;
    u8 depth_limit = NO_DEPTH_LIMIT;
    i64 max_nodes = 0;            // 0: none
    double move_overhead = 0.05;  // seconds
};

extern EngineOptions options;
extern SearchLimits limits;

// A depth argument as a depth limit: 67 and more mean none (66), negative ones 0.
constexpr u8 to_depth_limit(i64 depth) {
    if (depth < 0) return 0;
    return u8(depth > NO_DEPTH_LIMIT ? NO_DEPTH_LIMIT : depth);
}

}  // namespace quon
