// The "position" command.

#include "frontend/uci.h"

#include <algorithm>
#include <string>

#include "board/fen.h"
#include "board/make.h"
#include "board/move_text.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "engine/report.h"
#include "search/run.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr std::string_view MOVES = "moves";
constexpr std::string_view STARTPOS = "startpos";
constexpr std::string_view FEN = "fen";

bool set_position(Engine& engine, std::string_view text) {
    if (text.find(STARTPOS) != std::string_view::npos) {
        set_start_position(engine.game.position);
        return true;
    }
    const std::size_t fen = text.find(FEN);
    if (fen == std::string_view::npos) return false;
    read_position(engine.game.position, without_leading_blanks(text_from(text, fen + FEN.size())));
    return true;
}

void make_moves(Engine& engine, std::string_view moves) {
    for (moves = without_leading_blanks(moves); !moves.empty();
         moves = without_leading_blanks(moves)) {
        const std::string_view token = moves.substr(0, moves.find(' '));
        moves.remove_prefix(token.size());
        const Move move = parse_coordinates(engine.game.position, token);
        if (move == NO_MOVE) {
            engine_print("info string illegal move " + std::string(token));
            break;
        }
        make_game_move(engine.game, move);
    }
    engine.game.undo[engine.game.game_ply].move = NO_MOVE;  // nothing to replay
}

}  // namespace

void position_command(Engine& engine, std::string_view rest) {
    const std::size_t moves = std::min(rest.find(MOVES), rest.size());
    if (!set_position(engine, rest.substr(0, moves))) return;
    if (moves < rest.size()) make_moves(engine, text_from(rest, moves + MOVES.size() + 1));
}

}  // namespace quon
