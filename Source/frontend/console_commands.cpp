// The commands of console mode: one table from word to handler, from which the help is printed too.

#include "frontend/console_commands.h"

#include <string>

#include "book/book_build.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "engine/report.h"
#include "eval/eval_tables.h"
#include "search/control.h"
#include "search/run.h"
#include "support/text.h"
#include "tools/tool_input.h"
#include "tools/tune.h"

namespace quon {

namespace {

void show_help(Engine&, const ConsoleLine&);

void show_book(Engine& engine, const ConsoleLine&) {
    book_show(engine, true);
    engine_print("");
}

void make_book(Engine& engine, const ConsoleLine&) {
    take_over(engine);
    book_close(engine.book);
    engine.options.book_file.clear();
    build_book(engine.game.position,
               {print_unlogged, engine_print, [&] { return keep_on(engine); }});
}

void tune_parameter(Engine& engine, const ConsoleLine& line) {
    take_over(engine);
    tune_command(engine, line.first, line.second);
}

struct ConsoleCommand {
    std::string_view word;
    const char* arguments;
    void (*handle)(Engine& engine, const ConsoleLine& line);
    const char* help;
    bool as_part = false;  // words that contain this one match as well
};

// Looked through in this order.
constexpr ConsoleCommand COMMANDS[] = {
    {"new", "", new_game, "set up the start position"},
    {"fen", "FEN", set_fen, "set up a position"},
    {"quit", "", [](Engine& engine, const ConsoleLine&) { engine.control.quit_requested = true; },
     "end the program"},
    {"mv", "", search_move, "search and report a move, without playing it"},
    {"go", "[DEPTH]", analyse, "analyse, until '.' if no depth is given"},
    {"an", "[DEPTH]", analyse, "the same as go"},
    {".", "", end_search, "end the search and report it"},
    {"bd", "", [](Engine& engine, const ConsoleLine&) { show_game(engine); }, "show the board"},
    {"level", "MOVES TIME INC", set_level,
     "MOVES moves in TIME (seconds or m:ss), INC more for each; 0: the game, 1: a move"},
    {"depth", "N",
     [](Engine& engine, const ConsoleLine& line) {
         engine.limits.depth_limit = to_depth_limit(to_integer(line.first));
     },
     "search no deeper than N plies; 66: no limit"},
    {"ponder", "N",
     [](Engine& engine, const ConsoleLine& line) {
         engine.settings.ponder_option = to_number<i16>(line.first);
     },
     "1: spend a little more time, as if pondering; 0: do not"},
    {"self", "", play_itself, "let the engine play both sides, until you move, undo or go"},
    {"get", "ID", get_position, "set up the position of that id from test.epd"},
    {"noise", "SECONDS",
     [](Engine& engine, const ConsoleLine& line) {
         engine.options.output_delay = to_real(line.first);
     },
     "no progress lines before a search is this old; 9999: none"},
    {"hash", "N",
     [](Engine& engine, const ConsoleLine& line) {
         engine.settings.hash_mode = to_number<u8>(line.first);
     },
     "hash table: 0 unused, 1 used, 2 also kept by go"},
    {"ev", "", [](Engine& engine, const ConsoleLine&) { eval_trace(engine); },
     "the evaluation, term by term"},
    {"sp", "",
     [](Engine& engine, const ConsoleLine&) {
         print_unlogged(eval_tables_text(engine.eval_tables));
     },
     "the tables of the evaluation"},
    {"pv", "", show_line, "the line that the engine expects; ] then plays it"},
    {"trace", "N",
     [](Engine& engine, const ConsoleLine& line) {
         engine.settings.trace = to_number<i16>(line.first);
     },
     "write the first N plies of the search tree to trace.txt; 0: off"},
    {"lmr", "", show_reductions, "search parameters and the tables of reductions"},
    {"debug", "N",
     [](Engine& engine, const ConsoleLine& line) {
         engine.options.debug = to_number<i16>(line.first);
     },
     "1: show evaluations in place of boards; 0: boards"},
    {"multipv", "N",
     [](Engine& engine, const ConsoleLine& line) {
         engine.settings.multipv = to_number<i16>(line.first);
     },
     "show the best N lines", true},
    {"undo", "", undo_move, "take a move back"},
    {"[", "", undo_move, "the same as undo"},
    {"]", "", redo_move, "make the move again that was taken back"},
    {"load", "FILE [GAME]", load_game, "load a game of a PGN file, by number or by text in it"},
    {"save", "", save_game, "append the game to tmp.pgn"},
    {"jump", "N", jump_to_ply, "go to the position after N plies of the game"},
    {"edit", "", edit_position, "change the board piece by piece"},
    {"book", "", show_book, "what the opening book knows of the moves here"},
    {"mkbook", "", make_book, "build the opening book book.opn from the games of book.pgn"},
    {"set", "NAME [VALUE]", set_parameter,
     "a search parameter, target_nps or ss_off; set alone: all as at the start"},
    {"tune", "NAME [FILE]", tune_parameter,
     "search the best value of a parameter over the positions of FILE, or tune.epd"},
    {"perft", "N", count_paths, "count the move paths of N plies"},
    {"swap", "", show_exchanges, "what each piece is worth to the side that takes it"},
    {"move", "MOVE", [](Engine& engine, const ConsoleLine& line) { play_move(engine, line.first); },
     "play a move; a move alone (e4, Nf3, e2e4) does as well"},
    {"help", "", show_help, "this list"},
};

void show_help(Engine&, const ConsoleLine&) {
    std::string text;
    for (const ConsoleCommand& command : COMMANDS) {
        const std::string call = std::string(command.word) + ' ' + command.arguments;
        text += format("%-21s%s\n", call.c_str(), command.help);
    }
    engine_print(text + "uci                  talk UCI from here on");
}

const ConsoleCommand* find_command(std::string_view word) {
    const auto* const row =
        std::find_if(std::begin(COMMANDS), std::end(COMMANDS), [&](const ConsoleCommand& c) {
            return c.as_part ? word.find(c.word) != std::string_view::npos : c.word == word;
        });
    return row == std::end(COMMANDS) ? nullptr : row;
}

ConsoleLine parse_line(std::string_view text) {
    constexpr std::size_t LONGEST_WORD = 128;
    const auto take_word = [&text] { return take_token(text, " ").substr(0, LONGEST_WORD); };
    ConsoleLine line;
    line.word = take_word();
    line.rest = without_leading_blanks(text);
    line.first = take_word();
    line.second = take_word();
    line.third = take_word();
    return line;
}

}  // namespace

void handle_console_command(Engine& engine, std::string_view text) {
    const ConsoleLine line = parse_line(text);
    start_command_input();
    if (const ConsoleCommand* const command = find_command(line.word)) {
        command->handle(engine, line);
    } else {
        play_move(engine, line.word);
    }
    end_tool_input(engine);
}

}  // namespace quon
