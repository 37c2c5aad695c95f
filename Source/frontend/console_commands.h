#pragma once
// The commands of console mode, typed by a person: what their handlers share, and the handlers of
// the larger ones by the file that holds them.

#include <algorithm>
#include <limits>
#include <string_view>

#include "board/types.h"
#include "engine/engine.h"
#include "support/text.h"

namespace quon {

// Handles one line that is not empty.
void handle_console_command(Engine& engine, std::string_view line);

// A command line. The words are cut at 128 characters, missing ones are empty.
struct ConsoleLine {
    std::string_view word;
    std::string_view first, second, third;  // arguments
    std::string_view rest;                  // all that follows the word, leading blanks skipped
};

template <typename Integer>
Integer to_number(std::string_view text) {
    using Limits = std::numeric_limits<Integer>;
    return Integer(std::clamp<i64>(to_integer(text), Limits::min(), Limits::max()));
}

// Before anything about the game changes: abandons and reports a running search, ends self-play.
void take_over(Engine& engine);
// The board, or the evaluation in its place while options.debug is set.
void show_game(Engine& engine);
// Both clocks as at the start of a game.
void reset_clocks(Engine& engine);

// console_game.cpp: the game on the board
void new_game(Engine& engine, const ConsoleLine& line);
void set_fen(Engine& engine, const ConsoleLine& line);
void get_position(Engine& engine, const ConsoleLine& line);
void undo_move(Engine& engine, const ConsoleLine& line);
void redo_move(Engine& engine, const ConsoleLine& line);
void jump_to_ply(Engine& engine, const ConsoleLine& line);
// Makes the move that the text names; does nothing for any other text.
void play_move(Engine& engine, std::string_view text);

// game_files.cpp
void load_game(Engine& engine, const ConsoleLine& line);
void save_game(Engine& engine, const ConsoleLine& line);

// console_edit.cpp
void edit_position(Engine& engine, const ConsoleLine& line);

// console_search.cpp: searches and their settings
void search_move(Engine& engine, const ConsoleLine& line);
void analyse(Engine& engine, const ConsoleLine& line);
void end_search(Engine& engine, const ConsoleLine& line);
void play_itself(Engine& engine, const ConsoleLine& line);
void set_level(Engine& engine, const ConsoleLine& line);
void set_parameter(Engine& engine, const ConsoleLine& line);

// console_inspect.cpp: looking inside
void show_line(Engine& engine, const ConsoleLine& line);
void show_reductions(Engine& engine, const ConsoleLine& line);
void show_exchanges(Engine& engine, const ConsoleLine& line);
void count_paths(Engine& engine, const ConsoleLine& line);

// eval_command.cpp
// Prints the evaluation of the game position term by term, or why there is none. A running search
// is stopped and reported first, since one of its threads does the work.
void eval_trace(Engine& engine);

}  // namespace quon
