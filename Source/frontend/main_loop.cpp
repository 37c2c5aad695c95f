// The main thread's loop. A turn handles at most one command. It sleeps only while there is nothing
// to do: without limit when idle, and for a few milliseconds between the time checks of a search.

#include "frontend/main_loop.h"

#include <string>

#include "engine/engine.h"
#include "engine/input.h"
#include "engine/output.h"
#include "frontend/console_commands.h"
#include "frontend/search_session.h"
#include "frontend/uci.h"
#include "platform/events.h"
#include "search/control.h"
#include "search/run.h"
#include "search/threads.h"
#include "search/time.h"

namespace quon {

namespace {

// Between time checks; where a move takes no longer than a few of them, less.
constexpr int CHECK_MS = 5;
constexpr int SHORT_CHECK_MS = 1;
constexpr double SHORT_TARGET = 0.05;  // seconds
// A search's first move is waited for before it is ended or changed, so that a "stop" sent right
// behind "go" is answered with a move; but not longer than this.
constexpr double FIRST_MOVE_SECONDS = 0.5;

bool first_move_awaited(Engine& engine) {
    return engine.run.shared_depth < 1 && engine.run.elapsed < FIRST_MOVE_SECONDS;
}

void wait_for_work(Engine& engine, bool searching) {
    if (searching && first_move_awaited(engine)) {
        wait_for_event(1, false);
    } else if (!command_pending()) {
        const int check_ms = engine.run.target_time < SHORT_TARGET ? SHORT_CHECK_MS : CHECK_MS;
        wait_for_event(searching ? check_ms : -1, !input_ended());
    }
}

// Only what ends or changes a search waits for its first move.
bool next_command_waits(Engine& engine) {
    std::string command;
    const bool passes =
        engine.options.uci_mode && peek_command(command) && leaves_search_alone(command);
    return !passes;
}

// Nothing can stop this search but a command.
bool unlimited(Engine& engine, u8 mode) {
    if (mode == GO_PONDER) return true;
    if (engine.run.depth_limit < NO_DEPTH_LIMIT || engine.limits.max_nodes != 0) return false;
    return mode == GO_ANALYSE ||
           (engine.limits.time_mode == FIXED_TIME && engine.limits.fixed_time >= ENDLESS_SECONDS);
}

// The input has ended and its last command is handled: nobody will ask for more.
void wind_up(Engine& engine) {
    if (engine.control.search_mode == NO_SEARCH) {
        engine.control.quit_requested = true;
    } else if (engine.options.self_play && !engine.options.self_play_alone) {
        engine.options.self_play = false;
        stop_search(engine, STOP);
    } else if (unlimited(engine, engine.control.search_mode)) {
        stop_search(engine, STOP);
    }
}

void turn(Engine& engine) {
    const bool searching = busy_threads(engine) != 0;
    if (!searching && report_due(engine)) return;
    if (!input_ended() || searching) wait_for_work(engine, searching);
    if (searching) {
        time_check(engine);
        const bool first_move_missing = first_move_awaited(engine) && busy_threads(engine) != 0;
        if (first_move_missing && next_command_waits(engine)) return;
    }
    process_input(engine);
    if (input_ended() && !command_pending() && engine.control.go_request == NO_SEARCH)
        wind_up(engine);
}

}  // namespace

void process_input(Engine& engine) {
    std::string command;
    if (!next_command(engine, command)) return;
    if (engine.options.uci_mode || command == "uci") {
        handle_uci_command(engine, command);
    } else if (!command.empty()) {
        handle_console_command(engine, command);
    }
}

void main_loop(Engine& engine) {
    while (!engine.control.quit_requested && !output_lost()) {
        if (engine.control.go_request == NO_SEARCH) {
            turn(engine);
            if (engine.control.quit_requested) break;
        }
        if (engine.control.go_request != NO_SEARCH) {
            if (engine.control.search_mode == NO_SEARCH) {
                start_search(engine);
            } else {
                // "go" has told the search before it to stop.
                stop_search(engine, ABORT);
            }
        }
        if (report_due(engine)) report_search(engine);
    }
}

}  // namespace quon
