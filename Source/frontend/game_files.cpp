// Games in files: one of a PGN file is loaded, the one on the board is appended to "tmp.pgn".

#include <cctype>
#include <string>

#include "board/fen.h"
#include "board/make.h"
#include "board/move_text.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "engine/report.h"
#include "frontend/console_commands.h"
#include "pgn/pgn_reader.h"
#include "search/run.h"
#include "support/line_reader.h"
#include "support/output_file.h"
#include "support/text.h"
#include "tools/tool_input.h"

namespace quon {

namespace {

constexpr int LAST_GAME = 1000;
constexpr std::string_view EVENT = "[Event ";

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

// Finds the lines of the chosen game: that of a number, or the first with a line that contains a
// text.
struct GameChoice {
    std::string_view text;  // empty once the number is known
    int number = 1;
    int current = 0;  // games begun so far
};

GameChoice choose_game(std::string_view tag) {
    if (tag.empty()) return {};
    if (!std::isdigit(static_cast<unsigned char>(tag[0]))) return {.text = tag};
    const i64 number = to_integer(tag);
    return {.text = {}, .number = number >= 1 && number <= LAST_GAME ? int(number) : 1};
}

bool belongs_to_game(GameChoice& choice, std::string_view line) {
    if (contains(line, EVENT)) ++choice.current;
    if (!choice.text.empty()) {
        if (!contains(line, choice.text)) return false;
        choice.number = choice.current;
        choice.text = {};
    }
    return choice.current == choice.number;
}

bool is_past(const GameChoice& choice) {
    return choice.text.empty() && choice.current > choice.number;
}

// False at the first token that is no move.
bool play_moves(Engine& engine, PgnReader& pgn, std::string_view text) {
    while (const std::optional<PgnToken> token = next_token(pgn, text)) {
        if (token->kind != PgnToken::MOVE) continue;
        Move move = NO_MOVE;
        if (!read_move(engine.game.position, token->text, move)) {
            engine_print(format("can't parse move '%s'", std::string(token->text).c_str()));
            return false;
        }
        make_game_move(engine.game, move);
    }
    return true;
}

void play_game(Engine& engine, LineReader& reader, GameChoice choice) {
    set_start_position(engine.game.position);
    PgnReader pgn{&LOADED_GAME};
    LinePiece piece{};
    while (!end_wished(engine) && next_piece(reader, piece)) {
        const bool has_moves = begin_piece(pgn, piece);
        const bool chosen = belongs_to_game(choice, piece.text);
        if (is_past(choice)) break;
        if (chosen && has_moves && !play_moves(engine, pgn, piece.text)) break;
    }
    engine.game.undo[engine.game.game_ply].move = NO_MOVE;  // nothing to replay
    print_board(engine.game.position);
}

}  // namespace

void load_game(Engine& engine, const ConsoleLine& line) {
    take_over(engine);
    const std::string name(line.first);
    engine_print(format("loading %s, tag %s\n", name.c_str(), std::string(line.second).c_str()));
    LineReader reader;
    if (open_lines(reader, name, LOADED_GAME.line_limit, LOADED_GAME.long_line)) {
        play_game(engine, reader, choose_game(line.second));
    }
    reset_clocks(engine);
}

namespace {

constexpr char SAVE_NAME[] = "tmp.pgn";
constexpr int MOVES_PER_LINE = 11;

// Takes the whole game back and makes it again.
std::string game_text(Engine& engine) {
    const int plies = engine.game.game_ply;
    Position& p = engine.game.position;
    while (engine.game.game_ply > 0) unmake_move(p);
    std::string text;
    while (engine.game.game_ply < plies) {
        const Move move = engine.game.undo[engine.game.game_ply].move;
        text += readable_san(p, move_entry(p, move));
        text += ' ';
        make_move(p, move);
        if (engine.game.game_ply % MOVES_PER_LINE == 0) text += '\n';
    }
    return text;
}

}  // namespace

void save_game(Engine& engine, const ConsoleLine&) {
    File file;
    if (!file.open(SAVE_NAME, FileMode::APPEND)) return;
    file.write("[Event \"Unknown\"]\n" + game_text(engine) + "\n\n");
    static_cast<void>(close_output(file));  // a failure is told
}

}  // namespace quon
