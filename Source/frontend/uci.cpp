// The UCI commands: one table from word to handler. A handler gets the text after the word and one
// separator.

#include "frontend/uci.h"

#include <string>

#include "engine/engine.h"
#include "engine/output.h"
#include "frontend/search_session.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/run.h"
#include "support/text.h"

namespace quon {

namespace {

void uci_command(Engine& engine, std::string_view) {
    set_uci_mode(engine, true);
    print_name();
    engine_print(std::string("id author ") + ENGINE_AUTHOR);
    print_uci_options(engine);
    engine_print("uciok");
}

void isready_command(Engine&, std::string_view) { engine_print("readyok"); }

void ucinewgame_command(Engine& engine, std::string_view) {
    finish_search(engine);
    engine.limits.fixed_time = 60;
    engine.limits.time_mode = CLOCK_TIME;
    engine.limits.clock = {{60, 60}};
    engine.limits.increment = 0;
    engine.game.game_ply = 0;
    if (engine.settings.hash_mode != 0) hash_clear(engine.hash);
}

void ponderhit_command(Engine& engine, std::string_view) {
    if (engine.control.search_mode == GO_PONDER) engine.control.search_mode = GO_PLAY;
}

// Without a search the result of the last one is reported again.
void stop_command(Engine& engine, std::string_view) {
    stop_search(engine, STOP);
    engine.control.search_mode = GO_PLAY;
}

// A running search ends with its threads.
void quit_command(Engine& engine, std::string_view) { engine.control.quit_requested = true; }

struct UciCommand {
    std::string_view word;
    void (*handle)(Engine& engine, std::string_view rest);
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

void handle_uci_command(Engine& engine, std::string_view line) {
    if (line.empty()) return;
    print_command(line);
    const std::string_view word = first_word(line);
    for (const UciCommand& command : COMMANDS) {
        if (command.word != word) continue;
        const auto word_end = std::size_t(word.data() - line.data()) + word.size();
        command.handle(engine, text_from(line, word_end + 1));
        return;
    }
}

}  // namespace quon
