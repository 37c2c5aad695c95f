// The main thread's loop. A turn handles at most one command. It sleeps only while there is nothing
// to do: without limit when idle, and for a few milliseconds between the time checks of a search.

#include "frontend/main_loop.h"

#include "frontend/engine_options.h"
#include "frontend/input.h"
#include "frontend/output.h"
#include "frontend/search_session.h"
#include "platform/events.h"
#include "search/control.h"
#include "search/run.h"
#include "search/threads.h"
#include "search/time.h"

namespace quon {

namespace {

constexpr int CHECK_MS = 5;  // between time checks
// A search's first move is waited for before commands go on, so that a "stop" sent right behind
// "go" is answered with a move; but not longer than this.
constexpr double FIRST_MOVE_SECONDS = 0.5;

bool first_move_awaited() { return run.shared_depth < 1 && run.elapsed < FIRST_MOVE_SECONDS; }

void wait_for_work(bool searching) {
    if (searching && first_move_awaited()) {
        wait_for_event(1, false);
    } else if (!command_pending()) {
        wait_for_event(searching ? CHECK_MS : -1, !input_ended());
    }
}

// Nothing can stop this search but a command.
bool unlimited(u8 mode) {
    if (mode == GO_PONDER) return true;
    if (limits.depth_limit < NO_DEPTH_LIMIT || limits.max_nodes != 0) return false;
    return mode == GO_ANALYSE ||
           (limits.time_mode == FIXED_TIME && limits.fixed_time >= ENDLESS_SECONDS);
}

// The input has ended and its last command is handled: nobody will ask for more.
void wind_up() {
    if (control.search_mode == NO_SEARCH) {
        control.quit_requested = true;
    } else if (options.self_play && !options.self_play_alone) {
        options.self_play = false;
        stop_search(STOP);
    } else if (unlimited(control.search_mode)) {
        stop_search(STOP);
    }
}

void turn() {
    const bool searching = busy_threads() != 0;
    if (!searching && report_due()) return;
    if (!input_ended() || searching) wait_for_work(searching);
    if (searching) {
        time_check();
        if (first_move_awaited() && busy_threads() != 0) return;
    }
    process_input();
    if (input_ended() && !command_pending() && control.go_request == NO_SEARCH) wind_up();
}

}  // namespace

void main_loop() {
    while (!control.quit_requested && !output_lost()) {
        if (control.go_request == NO_SEARCH) {
            turn();
            if (control.quit_requested) break;
        }
        if (control.go_request != NO_SEARCH) {
            if (control.search_mode == NO_SEARCH) {
                start_search();
            } else {
                // "go" has told the search before it to stop.
                stop_search(ABORT);
            }
        }
        if (report_due()) report_search();
    }
}

}  // namespace quon
