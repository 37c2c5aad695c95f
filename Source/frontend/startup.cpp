// Start-up in its fixed order, the choice of what to do, and shutdown.

#include "frontend/startup.h"

#include <memory>

#include "board/bitboard.h"
#include "board/fen.h"
#include "book/book.h"
#include "engine/engine.h"
#include "engine/input.h"
#include "engine/output.h"
#include "engine/param_settings.h"
#include "engine/report.h"
#include "engine/search_report.h"
#include "eval/eval_tables.h"
#include "eval/kpk.h"
#include "frontend/command_line.h"
#include "frontend/main_loop.h"
#include "frontend/uci.h"
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
#include "support/status_line.h"
#include "support/text.h"
#include "tools/bench.h"
#include "tools/epd_runner.h"
#include "tools/match.h"
#include "tools/pgn_scan.h"
#include "tools/tune.h"

namespace quon {

namespace {

constexpr char PARAM_FILE[] = "quon.rc";

// A match is many short searches; unless its limits are all wide every millisecond counts.
u32 wanted_timer_period_ms(Engine& engine, const RunMode& mode) {
    const bool long_searches = engine.limits.depth_limit > 5 && engine.limits.fixed_time > 0.1 &&
                               engine.limits.max_nodes > 99999;
    return mode.job == Job::MATCH && !long_searches ? 1 : 5;
}

void set_timer_period(Engine& engine, const RunMode& mode) {
    switch (request_timer_period(wanted_timer_period_ms(engine, mode),
                                 engine.options.timer_resolution)) {
        case TimerStatus::NO_CAPABILITIES:
            print_unlogged("error setting timer resolution\n");
            break;
        case TimerStatus::REFUSED: engine_print("Error setting timer resolution"); break;
        case TimerStatus::NOT_NEEDED:
        case TimerStatus::SET: break;
    }
}

bool refuse(const char* reason) {
    error_line(format("quon: %s", reason));
    return false;
}

// Brings everything up; false when memory or threads are short.
bool start(Engine& engine, const CommandLine& line, RunMode& mode) {
    // 1. Before any file is opened and any thread exists.
    init_events();
    init_output();
    seed(engine.random, u64(wall_clock_ms()));
    // 2. From here on lines are logged.
    open_log_file();
    // 3. The game on the board, and the tables that depend on nothing.
    init_attack_tables();
    build_kpk_bitbase();
    // 4. The parameter file over the built-in values, the command line over both.
    load_params(engine, PARAM_FILE, engine.params);
    engine.default_params = engine.params;
    mode = apply_command_line(engine, line);
    engine.default_limits = engine.limits;
    // 5. The hash table; the position keys come with it.
    if (!hash_alloc(engine.hash, engine.settings.hash_mb, engine.settings.threads))
        return refuse("not enough memory for the hash table");
    // 6. The book that the parameter file names.
    load_book(engine);
    // 7. The search threads.
    if (!create_threads(engine, engine.settings.threads))
        return refuse("the search threads cannot be created");
    set_timer_period(engine, mode);
    // 8. What the search and the evaluation derive from the parameters.
    derive_tables(engine);
    return true;
}

// A person who starts the program by its name alone sees little of it.
void greet_person(const Engine& engine) {
    if (!engine.options.uci_mode || !input_is_terminal() || !output_is_terminal()) return;
    error_line(
        format("%s, a chess engine that talks UCI: quon -c is for a person, quon --help "
               "lists the switches",
               ENGINE_NAME));
}

void run_protocol(Engine& engine) {
    leave_output_if(quit_or_end_comes);
    greet_person(engine);
    set_start_position(engine.game.position);
    const Calibration measured = calibrate_strength(engine);
    engine_print(format("info string et= %.3f, nodes= %.0f, nps= %0.0f", measured.seconds,
                        double(measured.nodes), measured.nps));
    apply_search_params(engine.search_params, engine.params);
    load_tablebases(engine);
    set_start_position(engine.game.position);
    if (!engine.options.uci_mode) print_board(engine.game.position);
    engine.control.go_request = NO_SEARCH;
    engine.control.quit_requested = false;
    main_loop(engine);
}

// A tool that the command line can ask for; false if its files could not be read or written.
struct Tool {
    Job job;
    bool (*run)(Engine& engine, const RunMode& mode);
};

constexpr Tool TOOLS[] = {
    {Job::TEST_SUITE,
     [](Engine& engine, const RunMode&) {
         return run_test_suite(engine, engine.options.tune_file);
     }},
    {Job::PGN_SCAN, [](Engine& engine,
                       const RunMode& m) { return scan_pgn(engine, m.scan_file, m.scan_variant); }},
    {Job::BENCH,
     [](Engine& engine, const RunMode& m) {
         run_bench(engine, m.bench_variant, m.bench_single_thread, process_input);
         return true;
     }},
    {Job::MATCH, [](Engine& engine, const RunMode&) { return run_match(engine); }},
    {Job::TUNING_SET, [](Engine& engine, const RunMode&) { return make_tuning_set(engine); }},
    {Job::TUNE, [](Engine& engine, const RunMode&) { return tune_gradient(engine); }},
};

// False if a tool failed.
bool run_job(Engine& engine, const RunMode& mode) {
    for (const Tool& tool : TOOLS) {
        if (tool.job == mode.job) return tool.run(engine, mode);
    }
    run_protocol(engine);
    return true;
}

void shut_down(Engine& engine) {
    destroy_threads(engine);
    flush_search_trace(engine.trace);  // of a search that "quit" has broken off
    book_close(engine.book);
    hash_free(engine.hash);
    release_timer_period(engine.options.timer_resolution);
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
    const auto owned = std::make_unique<Engine>();
    Engine& engine = *owned;
    SearchReporter reporter(engine);
    engine.listener = &reporter;
    const CommandLine line = read_command_line(engine, words);
    if (line.exit_status) return checked_status(*line.exit_status);
    RunMode mode;
    if (!start(engine, line, mode)) return 1;
    const bool done = run_job(engine, mode);
    shut_down(engine);
    return checked_status(done ? 0 : 1);
}

}  // namespace quon
