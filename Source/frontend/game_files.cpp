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
#include "search/run.h"
#include "support/line_reader.h"
#include "support/output_file.h"
#include "support/text.h"
#include "tools/tool_input.h"

namespace quon {

namespace {

constexpr std::size_t GAME_LINE = 1023;
constexpr std::size_t MOVE_TOKEN = 32;
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

// The text with a blank in place of every comment, whose nesting goes on from line to line.
std::string without_comments(std::string_view text, int& nesting) {
    std::string kept;
    for (const char c : text) {
        if (c == '{') ++nesting;
        const bool comment = nesting > 0 || c == '}';
        kept += comment ? ' ' : c;
        if (c == '}' && nesting > 0) --nesting;
    }
    return kept;
}

// False at the first token that is no move.
bool play_tokens(Engine& engine, std::string_view text) {
    while (true) {
        const std::string_view token = take_token(text, " \t");
        if (token.empty()) return true;
        const std::string_view move_text = from_first_letter(token).substr(0, MOVE_TOKEN);
        if (move_text.empty()) continue;
        Move move = NO_MOVE;
        if (!read_move(engine.game.position, move_text, move)) {
            engine_print(format("can't parse move '%s'", std::string(move_text).c_str()));
            return false;
        }
        make_game_move(engine.game, move);
    }
}

void play_game(Engine& engine, LineReader& reader, GameChoice choice) {
    set_start_position(engine.game.position);
    int nesting = 0;
    bool tag_line = false;
    LinePiece piece{};
    while (!end_wished(engine) && next_piece(reader, piece)) {
        if (piece.starts_line) tag_line = piece.text.starts_with('[');
        const bool chosen = belongs_to_game(choice, piece.text);
        if (is_past(choice)) break;
        if (!chosen || tag_line) continue;
        if (!play_tokens(engine, without_comments(piece.text, nesting))) break;
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
    if (open_lines(reader, name, GAME_LINE, LongLine::AT_BLANK)) {
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
    OutputFile file;
    if (!append_to_output(file, SAVE_NAME)) return;
    write_text(file, "[Event \"Unknown\"]\n" + game_text(engine) + "\n\n");
    close_output(file);
}

}  // namespace quon
