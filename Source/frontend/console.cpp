// The commands of console mode: one table from word to handler. A handler gets the first word
// behind the command.

#include "frontend/console.h"

#include <algorithm>
#include <string>

#include "board/fen.h"
#include "board/perft.h"
#include "board/see.h"
#include "book/book_build.h"
#include "book/book_pick.h"
#include "frontend/output.h"
#include "frontend/search_session.h"
#include "frontend/words.h"
#include "platform/clock.h"
#include "search/control.h"
#include "search/run.h"
#include "search/search.h"
#include "search/threads.h"
#include "search/time.h"

namespace quon {

namespace {

void quit_command(std::string_view) { control.quit_requested = true; }

// Counts on a search thread's copy, so that the game's piece lists keep their order.
void perft_command(std::string_view argument) {
    const int depth = int(std::clamp<i64>(to_integer(argument), 0, 20));
    if (const char* problem = position_problem(game.position)) {
        engine_print(std::string("illegal position: ") + problem);
        return;
    }
    finish_search();
    time_setup();
    ThreadData& thread = thread_data(0);
    thread_prepare(thread);
    const auto nodes = double(perft(thread.position, depth));
    const double elapsed = monotonic_seconds() - run.start_time;
    engine_print(format("visited %0.0f nodes in %0.3f seconds, nps= %0.0f", nodes, elapsed,
                        nodes / (elapsed + 0.001)));
}

// What every man is worth to the side that takes it first.
void swap_command(std::string_view) {
    const Position& position = game.position;
    for (int square = 0; square < 64; ++square) {
        const int piece = position.board[square];
        if (piece == 0) continue;
        const int value = see(position, color_of(piece) ^ 1, NO_SQUARE, square);
        if (value != 0) print_unlogged(format("sq= %s, swap= %d\n", square_name[square], value));
    }
}

void book_command(std::string_view) {
    book_show(game.position, true);
    engine_print("");
}

void mkbook_command(std::string_view) {
    finish_search();
    build_book(game.position);
}

struct ConsoleCommand {
    std::string_view word;
    void (*handle)(std::string_view argument);
};

constexpr ConsoleCommand COMMANDS[] = {
    {"quit", quit_command},   {"book", book_command}, {"mkbook", mkbook_command},
    {"perft", perft_command}, {"swap", swap_command},
};

}  // namespace

void handle_console_command(std::string_view line) {
    const std::string_view start = without_leading_blanks(line);
    const std::string_view word = first_word(start);
    if (word.empty()) return;
    for (const ConsoleCommand& command : COMMANDS) {
        if (command.word != word) continue;
        command.handle(first_word(start.substr(word.size())));
        return;
    }
    engine_print("unknown command: " + std::string(word));
}

}  // namespace quon
