// Start-up in its fixed order, the choice of what to do, and shutdown.

#include "frontend/startup.h"

#include <cstdio>
#include <cstdlib>

#include "board/bitboard.h"
#include "board/fen.h"
#include "book/book.h"
#include "eval/eval_tables.h"
#include "eval/kpk.h"
#include "eval/param_file.h"
#include "frontend/command_line.h"
#include "frontend/engine_options.h"
#include "frontend/input.h"
#include "frontend/main_loop.h"
#include "frontend/output.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/standard_output.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/run.h"
#include "search/search_params.h"
#include "search/search_trace.h"
#include "search/strength.h"
#include "search/threads.h"
#include "syzygy/tbprobe.h"
#include "tools/bench.h"
#include "tools/epd_runner.h"
#include "tools/match.h"
#include "tools/pgn_scan.h"
#include "tools/tune.h"

namespace quon {

namespace {

constexpr char PARAM_FILE[] = "quon.rc";

// A match is many short searches; unless its limits are all wide every millisecond counts.
u32 wanted_timer_period_ms(const RunMode& mode) {
    const bool long_searches =
        limits.depth_limit > 5 && limits.fixed_time > 0.1 && limits.max_nodes > 99999;
    return mode.job == Job::MATCH && !long_searches ? 1 : 5;
}

void set_timer_period(const RunMode& mode) {
    switch (request_timer_period(wanted_timer_period_ms(mode), options.timer_resolution)) {
        case TimerStatus::NO_CAPABILITIES:
            print_unlogged("error setting timer resolution\n");
            break;
        case TimerStatus::REFUSED: engine_print("Error setting timer resolution"); break;
        case TimerStatus::NOT_NEEDED:
        case TimerStatus::SET: break;
    }
}

bool refuse(const char* reason) {
    std::fprintf(stderr, "quon: %s\n", reason);
    return false;
}

// Brings everything up; false when memory or threads are short.
bool start(const CommandLine& line, RunMode& mode) {
    // 1. Before any file is opened and any thread exists.
    init_events();
    init_output();
    std::srand(unsigned(wall_clock_ms()));
    // 2. From here on lines are logged.
    open_log_file();
    // 3. The game on the board, and the tables that depend on nothing.
    game.position.owner = &game;
    init_attack_tables();
    build_kpk_bitbase();
    // 4. The parameter file over the built-in values, the command line over both.
    load_params(PARAM_FILE, params);
    default_params = params;
    mode = apply_command_line(line);
    // 5. The hash table; the position keys come with it.
    if (!hash_alloc()) return refuse("not enough memory for the hash table");
    // 6. The book that the parameter file names.
    book_open();
    // 7. The search threads.
    if (!create_threads(options.threads)) return refuse("the search threads cannot be created");
    set_timer_period(mode);
    // 8. What the search and the evaluation derive from the parameters.
    apply_search_params();
    init_eval_tables();
    return true;
}

void run_protocol() {
    leave_output_if(quit_or_end_comes);
    position_from_fen(game.position, START_FEN);
    calibrate();
    apply_search_params();
    tb_init(options.syzygy_path);
    position_from_fen(game.position, START_FEN);
    if (!options.uci_mode) print_board(game.position);
    control.go_request = NO_SEARCH;
    control.quit_requested = false;
    main_loop();
}

// A tool that the command line can ask for; false if its files could not be read or written.
struct Tool {
    Job job;
    bool (*run)(const RunMode& mode);
};

constexpr Tool TOOLS[] = {
    {Job::TEST_SUITE, [](const RunMode&) { return run_test_suite(options.tune_file); }},
    {Job::PGN_SCAN, [](const RunMode& m) { return scan_pgn(m.scan_file, m.scan_variant); }},
    {Job::BENCH,
     [](const RunMode& m) {
         run_bench(m.bench_variant, m.bench_single_thread);
         return true;
     }},
    {Job::MATCH, [](const RunMode&) { return run_match(); }},
    {Job::TUNING_SET, [](const RunMode&) { return make_tuning_set(); }},
    {Job::TUNE, [](const RunMode&) { return tune_gradient(); }},
};

// False if a tool failed.
bool run_job(const RunMode& mode) {
    for (const Tool& tool : TOOLS) {
        if (tool.job == mode.job) return tool.run(mode);
    }
    run_protocol();
    return true;
}

void shut_down() {
    destroy_threads();
    flush_search_trace();  // of a search that "quit" has broken off
    book_close();
    hash_free();
    release_timer_period(options.timer_resolution);
    close_log_file();
}

// The exit status after `status`, unless the output was lost.
int checked_status(int status) {
    if (!output_lost()) return status;
    refuse("standard output cannot be written");
    return 1;
}

}  // namespace

int run_program(const std::vector<std::string>& words) {
    const CommandLine line = read_command_line(words);
    if (line.exit_status) return checked_status(*line.exit_status);
    RunMode mode;
    if (!start(line, mode)) return 1;
    const bool done = run_job(mode);
    shut_down();
    return checked_status(done ? 0 : 1);
}

}  // namespace quon
