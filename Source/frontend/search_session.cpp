// Starting, stopping and reporting a search.

#include "frontend/search_session.h"

#include <string>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "book/book_pick.h"
#include "frontend/engine_options.h"
#include "frontend/output.h"
#include "search/report.h"
#include "search/run.h"
#include "search/search_trace.h"
#include "search/threads.h"
#include "search/time.h"

namespace quon {

namespace {

constexpr int MAX_FIFTY = 100;

std::string best_move_text() {
    std::string text = "bestmove " + move_to_text(run.shared_line[1]);
    const Move reply = run.shared_line[2];
    if (reply != NO_MOVE) text += " ponder " + move_to_text(reply);
    return text;
}

Move book_move() {
    if (!options.own_book || game.game_ply > options.book_depth) return NO_MOVE;
    return book_pick(game.position);
}

// The book's move becomes the result of a search that has already ended.
void take_book_move(Move move) {
    engine_print(format("%sbook move is %s%s", message_prefix(), square_name[move_from(move)],
                        square_name[move_to(move)]));
    run.shared_score = i16{0};
    run.shared_line[1] = move;
    control.stop_flag = STOP;
}

// The side that has moved pays for its time. A front end may have set another position meanwhile:
// then there is no move to make.
void continue_self_play() {
    Position& p = game.position;
    limits.clock[p.side] += limits.increment - run.elapsed;
    const Move move = run.shared_line[1];
    if (!can_be_made(p, move)) {
        options.self_play = false;
        return;
    }
    make_game_move(game, move);
    print_board(p);
    control.go_request = GO_PLAY;
}

}  // namespace

bool position_accepted() {
    const char* const problem = position_problem(game.position);
    if (problem == nullptr) return true;
    engine_print(format("%sillegal position: %s", message_prefix(), problem));
    return false;
}

void start_search() {
    time_setup();
    if (const Move move = book_move(); move != NO_MOVE) {
        take_book_move(move);
    } else if (game.position.fifty <= MAX_FIFTY && position_accepted()) {
        start_search_threads();
    }
    control.go_request = NO_SEARCH;
}

bool report_due() {
    const u8 mode = control.search_mode;
    return mode != NO_SEARCH && mode != GO_PONDER && busy_threads() == 0;
}

void report_search() {
    flush_search_trace();
    collect_stats();
    final_report(run.shared_score);
    if (options.uci_mode) {
        engine_print(best_move_text());
    } else {
        print_console_statistics();
    }
    if (options.self_play) continue_self_play();
    control.search_mode = NO_SEARCH;
}

void stop_search(StopFlag flag) {
    if (control.search_mode == GO_PONDER) control.search_mode = GO_PLAY;
    control.stop_flag = flag;
    wait_for_idle_threads();
}

void finish_search(StopFlag flag) {
    if (control.search_mode == NO_SEARCH && busy_threads() == 0) return;
    stop_search(flag);
    if (report_due()) report_search();
}

}  // namespace quon
