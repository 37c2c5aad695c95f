// Starting, stopping and reporting a search.

#include "frontend/search_session.h"

#include <optional>
#include <string>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "book/book_pick.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "engine/report.h"
#include "engine/search_report.h"
#include "search/run.h"
#include "search/score.h"
#include "search/search_trace.h"
#include "search/threads.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr int MAX_FIFTY = 100;

std::string best_move_text(Engine& engine) {
    std::string text = "bestmove " + move_to_text(engine, engine.run.shared_line[1]);
    const Move reply = engine.run.shared_line[2];
    if (reply != NO_MOVE) text += " ponder " + move_to_text(engine, reply);
    return text;
}

std::optional<BookMove> book_move(Engine& engine) {
    // The book knows nothing of mates, and what it plays need not be among the moves asked for.
    const bool asks_more = !engine.run.root_moves.empty() || engine.run.mate_moves > 0;
    if (!engine.options.own_book || asks_more || engine.game.game_ply > engine.options.book_depth)
        return std::nullopt;
    return book_pick(engine);
}

// The book's move becomes the result of a search that has already ended.
void take_book_move(Engine& engine, const BookMove& book) {
    const Move move = book.move;
    engine_print(format("%sbook move is %s%s", message_prefix(engine), square_name[move_from(move)],
                        square_name[move_to(move)]));
    if (engine.options.uci_mode) {
        engine_print(format("info pv %s string book weight %.2f",
                            move_to_text(engine, move).c_str(), book.weight));
    }
    engine.run.shared_score = i16{0};
    engine.run.shared_line[1] = move;
    engine.control.stop_flag = STOP;
}

// Why there is no move, where the rules are the reason.
void tell_end_of_game(const Engine& engine) {
    const SearchRun& run = engine.run;
    if (run.shared_line[1] != NO_MOVE || run.shared_depth == 0) return;
    engine_print(run.shared_score < DRAW_SCORE ? "info string checkmate" : "info string stalemate");
}

// The side that has moved pays for its time. A front end may have set another position meanwhile:
// then there is no move to make.
void continue_self_play(Engine& engine) {
    Position& p = engine.game.position;
    engine.limits.clock[p.side] += engine.limits.increment - engine.run.elapsed;
    const Move move = engine.run.shared_line[1];
    if (!can_be_made(p, move)) {
        engine.options.self_play = false;
        return;
    }
    make_game_move(engine.game, move);
    print_board(p);
    engine.control.go_request = GO_PLAY;
}

}  // namespace

bool position_accepted(Engine& engine) {
    const char* const problem = position_problem(engine.game.position);
    if (problem == nullptr) return true;
    engine_print(format("%sillegal position: %s", message_prefix(engine), problem));
    return false;
}

void start_search(Engine& engine) {
    begin_search(engine);
    if (const auto book = book_move(engine)) {
        take_book_move(engine, *book);
    } else if (engine.game.position.fifty <= MAX_FIFTY && position_accepted(engine)) {
        start_search_threads(engine);
    }
    engine.control.go_request = NO_SEARCH;
}

bool report_due(Engine& engine) {
    const u8 mode = engine.control.search_mode;
    return mode != NO_SEARCH && mode != GO_PONDER && busy_threads(engine) == 0;
}

void report_search(Engine& engine) {
    update_elapsed(engine.run);
    flush_search_trace(engine.trace);
    collect_stats(engine);
    final_report(engine, engine.run.shared_score);
    if (engine.options.uci_mode) {
        tell_end_of_game(engine);
        engine_print(best_move_text(engine));
    } else {
        print_console_statistics(engine);
    }
    if (engine.options.self_play) continue_self_play(engine);
    engine.control.search_mode = NO_SEARCH;
}

void stop_search(Engine& engine, StopFlag flag) {
    if (engine.control.search_mode == GO_PONDER) engine.control.search_mode = GO_PLAY;
    engine.control.stop_flag = flag;
    wait_for_idle_threads(engine);
}

void finish_search(Engine& engine, StopFlag flag) {
    if (engine.control.search_mode == NO_SEARCH && busy_threads(engine) == 0) return;
    stop_search(engine, flag);
    if (report_due(engine)) report_search(engine);
}

}  // namespace quon
