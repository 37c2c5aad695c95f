// Console commands that set up positions and walk through the game.

#include <string>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "frontend/console_commands.h"
#include "frontend/engine_options.h"
#include "frontend/eval_command.h"
#include "frontend/line_reader.h"
#include "frontend/output.h"
#include "frontend/search_session.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/run.h"
#include "tools/tool_input.h"

namespace quon {

void take_over() {
    options.self_play = false;
    finish_search(ABORT);
    control.go_request = NO_SEARCH;
}

void show_game() {
    if (options.debug != 0) {
        eval_trace();
    } else {
        print_board(game.position);
    }
}

void reset_clocks() { limits.clock = {{limits.fixed_time, limits.fixed_time}}; }

void new_game(const ConsoleLine&) {
    take_over();
    position_from_fen(game.position, START_FEN);
    print_board(game.position);
    reset_clocks();
}

void set_fen(const ConsoleLine& line) {
    take_over();
    // Without a text the board stays: nobody means to clear it that way.
    if (!line.rest.empty()) position_from_fen(game.position, line.rest);
    print_board(game.position);
}

namespace {

constexpr char POSITIONS_NAME[] = "test.epd";
constexpr std::size_t POSITION_LINE = 255;
constexpr std::size_t TOO_SHORT = 8;  // characters that cannot hold a position

// The first line with the id; "" without one. False if the file cannot be opened.
bool find_position(std::string_view id, std::string& found) {
    const std::string wanted = "id \"" + std::string(id) + '"';
    LineReader reader;
    if (!open_lines(reader, POSITIONS_NAME, POSITION_LINE)) return false;
    LinePiece piece{};
    while (!end_wished() && next_piece(reader, piece)) {
        const bool remark = piece.text.starts_with(' ') || piece.text.starts_with(';');
        if (!piece.starts_line || remark || piece.text.find(wanted) == std::string_view::npos)
            continue;
        found = piece.text;
        break;
    }
    return true;
}

}  // namespace

void get_position(const ConsoleLine& line) {
    take_over();
    std::string text;
    if (!find_position(line.first, text)) text = line.word;
    engine_print(text);
    if (text.size() > TOO_SHORT) position_from_fen(game.position, text);
    print_board(game.position);
    hash_clear();
}

void undo_move(const ConsoleLine&) {
    take_over();
    if (game.game_ply == 0) return;
    unmake_move(game.position);
    show_game();
}

namespace {

// The move that stands in the record above the last one made, NO_MOVE if there is none. It may be
// left from another game and not fit.
Move move_to_replay() {
    if (game.game_ply >= MAX_GAME_PLIES) return NO_MOVE;
    const Move move = game.undo[game.game_ply].move;
    return can_be_made(game.position, move) ? move : NO_MOVE;
}

}  // namespace

void redo_move(const ConsoleLine&) {
    take_over();
    const Move move = move_to_replay();
    if (move == NO_MOVE) return;
    engine_print(format("%d%s move %s", game.game_ply / 2 + 1,
                        game.position.side == WHITE ? "." : "...", move_to_text(move).c_str()));
    make_move(game.position, move);
    show_game();
}

void jump_to_ply(const ConsoleLine& line) {
    take_over();
    const int target = to_number<i16>(line.first);
    while (game.game_ply > 0) unmake_move(game.position);
    while (game.game_ply < target) {
        const Move move = move_to_replay();
        if (move == NO_MOVE) break;
        make_move(game.position, move);
    }
    print_board(game.position);
}

void play_move(std::string_view text) {
    Move move = NO_MOVE;
    if (position_problem(game.position) || !parse_san(game.position, text, move)) return;
    take_over();
    engine_print(format("%d. move %s", game.game_ply / 2 + 1, normalized_san(text).c_str()));
    make_game_move(game, move);
    show_game();
}

}  // namespace quon
