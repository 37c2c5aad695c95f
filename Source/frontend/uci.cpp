// The UCI commands: one table from word to handler. A handler gets the text after the word and one
// separator.

#include "frontend/uci.h"

#include <string>

#include "frontend/engine_options.h"
#include "frontend/go_command.h"
#include "frontend/output.h"
#include "frontend/position_command.h"
#include "frontend/search_session.h"
#include "frontend/uci_options.h"
#include "frontend/words.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/run.h"

namespace quon {

namespace {

void uci_command(std::string_view) {
    options.uci_mode = true;
    print_name();
    engine_print(std::string("id author ") + ENGINE_AUTHOR);
    print_uci_options();
    engine_print("uciok");
}

void isready_command(std::string_view) { engine_print("readyok"); }

void ucinewgame_command(std::string_view) {
    finish_search();
    limits.fixed_time = 60;
    limits.time_mode = CLOCK_TIME;
    limits.clock = {{60, 60}};
    limits.increment = 0;
    game.game_ply = 0;
    if (options.hash_mode != 0) hash_clear();
}

void ponderhit_command(std::string_view) {
    if (control.search_mode == GO_PONDER) control.search_mode = GO_PLAY;
}

// Without a search the result of the last one is reported again.
void stop_command(std::string_view) {
    stop_search(STOP);
    control.search_mode = GO_PLAY;
}

// A running search ends with its threads.
void quit_command(std::string_view) { control.quit_requested = true; }

struct UciCommand {
    std::string_view word;
    void (*handle)(std::string_view rest);
};

constexpr UciCommand COMMANDS[] = {
    {"uci", uci_command},
    {"isready", isready_command},
    {"setoption", setoption_command},
    {"ucinewgame", ucinewgame_command},
    {"position", position_command},
    {"go", go_command},
    {"ponderhit", ponderhit_command},
    {"stop", stop_command},
    {"quit", quit_command},
};

}  // namespace

void print_name() { engine_print(std::string("id name ") + ENGINE_NAME); }

void handle_uci_command(std::string_view line) {
    if (line.empty()) return;
    if (options.log_enabled) engine_print("CMD: " + std::string(line));
    const std::string_view word = first_word(line);
    for (const UciCommand& command : COMMANDS) {
        if (command.word != word) continue;
        const auto word_end = std::size_t(word.data() - line.data()) + word.size();
        command.handle(text_from(line, word_end + 1));
        return;
    }
}

}  // namespace quon
