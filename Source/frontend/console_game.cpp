// Console commands that set up positions and walk through the game.

#include <string>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "engine/report.h"
#include "frontend/console_commands.h"
#include "frontend/search_session.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/run.h"
#include "support/line_reader.h"
#include "support/text.h"
#include "tools/tool_input.h"

namespace quon {

void take_over(Engine& engine) {
    engine.options.self_play = false;
    finish_search(engine, ABORT);
    engine.control.go_request = NO_SEARCH;
}

void show_game(Engine& engine) {
    if (engine.options.debug != 0) {
        eval_trace(engine);
    } else {
        print_board(engine.game.position);
    }
}

void reset_clocks(Engine& engine) {
    engine.limits.clock = {{engine.limits.fixed_time, engine.limits.fixed_time}};
}

void new_game(Engine& engine, const ConsoleLine&) {
    take_over(engine);
    set_start_position(engine.game.position);
    print_board(engine.game.position);
    reset_clocks(engine);
}

void set_fen(Engine& engine, const ConsoleLine& line) {
    take_over(engine);
    // Without a text the board stays: nobody means to clear it that way.
    if (!line.rest.empty()) read_position(engine.game.position, line.rest);
    print_board(engine.game.position);
}

namespace {

constexpr char POSITIONS_NAME[] = "test.epd";
constexpr std::size_t POSITION_LINE = 255;
constexpr std::size_t TOO_SHORT = 8;  // characters that cannot hold a position

// The first line with the id; "" without one. False if the file cannot be opened.
bool find_position(Engine& engine, std::string_view id, std::string& found) {
    const std::string wanted = "id \"" + std::string(id) + '"';
    LineReader reader;
    if (!open_lines(reader, POSITIONS_NAME, POSITION_LINE)) return false;
    LinePiece piece{};
    while (!end_wished(engine) && next_piece(reader, piece)) {
        const bool remark = piece.text.starts_with(' ') || piece.text.starts_with(';');
        if (!piece.starts_line || remark || piece.text.find(wanted) == std::string_view::npos)
            continue;
        found = piece.text;
        break;
    }
    return true;
}

}  // namespace

void get_position(Engine& engine, const ConsoleLine& line) {
    take_over(engine);
    std::string text;
    if (!find_position(engine, line.first, text)) text = line.word;
    engine_print(text);
    if (text.size() > TOO_SHORT) read_position(engine.game.position, text);
    print_board(engine.game.position);
    hash_clear(engine.hash, engine.settings.threads);
}

void undo_move(Engine& engine, const ConsoleLine&) {
    take_over(engine);
    if (engine.game.game_ply == 0) return;
    unmake_move(engine.game.position);
    show_game(engine);
}

namespace {

// The move that stands in the record above the last one made, NO_MOVE if there is none. It may be
// left from another game and not fit.
Move move_to_replay(Engine& engine) {
    if (engine.game.game_ply >= MAX_GAME_PLIES) return NO_MOVE;
    const Move move = engine.game.undo[engine.game.game_ply].move;
    return can_be_made(engine.game.position, move) ? move : NO_MOVE;
}

}  // namespace

void redo_move(Engine& engine, const ConsoleLine&) {
    take_over(engine);
    const Move move = move_to_replay(engine);
    if (move == NO_MOVE) return;
    engine_print(format("%d%s move %s", engine.game.game_ply / 2 + 1,
                        engine.game.position.side == WHITE ? "." : "...",
                        move_to_text(engine, move).c_str()));
    make_move(engine.game.position, move);
    show_game(engine);
}

void jump_to_ply(Engine& engine, const ConsoleLine& line) {
    take_over(engine);
    const int target = to_number<i16>(line.first);
    while (engine.game.game_ply > 0) unmake_move(engine.game.position);
    while (engine.game.game_ply < target) {
        const Move move = move_to_replay(engine);
        if (move == NO_MOVE) break;
        make_move(engine.game.position, move);
    }
    print_board(engine.game.position);
}

void play_move(Engine& engine, std::string_view text) {
    Move move = NO_MOVE;
    if (position_problem(engine.game.position) || !read_move(engine.game.position, text, move))
        return;
    take_over(engine);
    engine_print(format("%d. move %s", engine.game.game_ply / 2 + 1, normalized_san(text).c_str()));
    make_game_move(engine.game, move);
    show_game(engine);
}

}  // namespace quon
