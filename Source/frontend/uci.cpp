// The UCI commands: one table from word to handler. A handler gets the text after the word and one
// separator.

#include "frontend/uci.h"

#include <algorithm>
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
    engine_print(std::string("id name ") + ENGINE_NAME);
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
    engine.limits.depth_limit = engine.default_limits.depth_limit;
    engine.limits.max_nodes = engine.default_limits.max_nodes;
    engine.game.game_ply = 0;
    if (engine.settings.hash_mode != 0) hash_clear(engine.hash, engine.settings.threads);
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
    bool leaves_search_alone = false;
};

constexpr UciCommand COMMANDS[] = {
    {"uci", uci_command, true},
    {"isready", isready_command, true},
    {"setoption", setoption_command},
    {"ucinewgame", ucinewgame_command},
    {"position", position_command, true},
    {"go", go_command},
    {"ponderhit", ponderhit_command},
    {"stop", stop_command},
    {"quit", quit_command},
};

const UciCommand* find_command(std::string_view word) {
    const auto* const row = std::find_if(std::begin(COMMANDS), std::end(COMMANDS),
                                         [&](const UciCommand& c) { return c.word == word; });
    return row == std::end(COMMANDS) ? nullptr : row;
}

}  // namespace

bool leaves_search_alone(std::string_view line) {
    const UciCommand* const command = find_command(first_word(line));
    return command == nullptr || command->leaves_search_alone;
}

void handle_uci_command(Engine& engine, std::string_view line) {
    if (line.empty()) return;
    print_command(line);
    const std::string_view word = first_word(line);
    const UciCommand* const command = find_command(word);
    if (command == nullptr) return;
    const auto word_end = std::size_t(word.data() - line.data()) + word.size();
    command->handle(engine, text_from(line, word_end + 1));
}

}  // namespace quon
